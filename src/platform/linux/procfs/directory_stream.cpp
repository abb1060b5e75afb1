// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/procfs/directory_stream.hpp"

#include <algorithm>
#include <string_view>

namespace tarn {

std::vector<std::string> namesIn(const std::string& directory, std::size_t most) {
  std::vector<std::string> names;
  const DirectoryStream stream(::opendir(directory.c_str()));
  if (!stream) return names;
  // The stream is this call's own.
  // NOLINTNEXTLINE(concurrency-mt-unsafe)
  for (const dirent* entry = ::readdir(stream.get()); entry != nullptr && names.size() < most;
       entry = ::readdir(stream.get())) {  // NOLINT(concurrency-mt-unsafe)
    const std::string_view name = static_cast<const char*>(entry->d_name);
    if (name != "." && name != "..") names.emplace_back(name);
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace tarn
