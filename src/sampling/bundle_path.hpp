// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Pure functions over paths: what a path alone tells about the application that owns an executable.

#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tarn {

/// The outermost directory of `path` whose name ends with ".app", as an absolute path; nothing when no piece
/// of the path does. Empty pieces are dropped, and a relative path is read as if it began with "/".
std::optional<std::string> outermostBundle(std::string_view path);

/// The last piece of `path`, trailing slashes aside; empty for an empty path, "/" for the root.
std::string_view lastPathComponent(std::string_view path);

/// `name` without its last ".extension"; unchanged when that would leave nothing.
std::string_view deletingPathExtension(std::string_view name);

}  // namespace tarn
