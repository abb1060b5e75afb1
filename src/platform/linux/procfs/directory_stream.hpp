// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <dirent.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace tarn {

struct CloseDirectory {
  void operator()(DIR* directory) const { ::closedir(directory); }
};

/// An open directory whose names can be read, without memory for each; null when it could not be opened.
using DirectoryStream = std::unique_ptr<DIR, CloseDirectory>;

/// The names in a directory, in their order; the first `most` that the system tells, and none where it cannot
/// be listed. Throws std::bad_alloc, where the standard library's iterators end the program.
std::vector<std::string> namesIn(const std::string& directory, std::size_t most);

}  // namespace tarn
