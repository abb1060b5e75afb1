// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// What a process's paths, arguments and control group say of the application it belongs to, as pure
// functions. Ids are those of desktop files, without ".desktop"; the likelier ones come first.

#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// The ids that the sandbox of a control group stands for; empty outside of sandboxes.
std::vector<std::string> sandboxIds(std::string_view controlGroup);

/// The ids that the session manager's unit of a control group may stand for. Launchers separate the id by
/// hyphens from their own name and from a number, and do not all escape the hyphens within it.
std::vector<std::string> unitIds(std::string_view controlGroup);

/// The script, or the archive, that an interpreter with these arguments runs, as an absolute path. Where it
/// is told a class, the first place in which that is looked for.
std::optional<std::string> scriptOf(const std::vector<std::string>& arguments);

/// The directory into which the image is mounted that holds an executable, by the name that such mounts have.
std::optional<std::string> imageMountOf(std::string_view executable);

/// The directory of one application among those that applications have for themselves, from the innermost
/// that holds an executable outwards: "/opt/X", "/usr/lib/X" and the like, and what is below. Empty for a
/// path elsewhere.
std::vector<std::string_view> privateDirectoriesOf(std::string_view path);

}  // namespace tarn
