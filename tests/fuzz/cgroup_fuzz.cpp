// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <string>

#include "fuzz/fuzz_target.hpp"
#include "platform/linux/app_identity/desktop_id_candidates.hpp"

// The input is /proc/PID/cgroup, or a path.
FUZZ_TARGET(cgroup, text) {
  const std::string cgroupPath = tarn::parseCgroupPath(text);
  for (const std::string_view path : {std::string_view(cgroupPath), text}) {
    for (const auto& ids : {tarn::sandboxDesktopIds(path), tarn::unitDesktopIds(path)}) {
      for (const std::string& id : ids) tarn::require(!id.empty());
    }
    for (const std::string_view directory : tarn::privateDirectories(path))
      tarn::require(tarn::isWithin(directory, path));
    tarn::appImageMount(path);
  }
}
