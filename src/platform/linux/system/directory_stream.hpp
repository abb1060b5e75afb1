// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <dirent.h>

#include <memory>

namespace tarn {

struct CloseDirectory {
  void operator()(DIR* directory) const { ::closedir(directory); }
};

/// An open directory whose names can be read, without memory for each; null when it could not be opened.
using DirectoryStream = std::unique_ptr<DIR, CloseDirectory>;

}  // namespace tarn
