// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "fuzz/fuzz_target.hpp"
#include "platform/linux/app_identity/desktop_id_candidates.hpp"
#include "platform/linux/app_identity/process_facts.hpp"

FUZZ_TARGET(cgroup, text) {
  const std::string group = tarn::parseControlGroup(text);
  for (const std::string_view path : {std::string_view(group), text}) {
    for (const auto& ids : {tarn::sandboxIds(path), tarn::unitIds(path)}) {
      for (const std::string& id : ids) tarn::require(!id.empty());
    }
    for (const std::string_view part : tarn::privateDirectoriesOf(path))
      tarn::require(tarn::isWithin(part, path));
    tarn::imageMountOf(path);
  }
}
