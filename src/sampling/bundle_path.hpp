// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Pure functions on path strings. They do not access the file system.

#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tarn {

/// The outermost directory of `path` whose name ends with ".app", as an absolute path. Returns nullopt when
/// no path component ends with ".app". Empty components are dropped; a relative path is read as if it began
/// with "/".
std::optional<std::string> outermostBundle(std::string_view path);

/// The last component of `path`, without trailing slashes. Empty for an empty path, "/" for the root.
std::string_view lastPathComponent(std::string_view path);

/// `name` without its last ".extension". Returns `name` itself when nothing would remain.
std::string_view deletingPathExtension(std::string_view name);

}  // namespace tarn
