// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// The program that a desktop file's command line starts in the end, and what it passes to it.
struct ExecLine {
  std::string program;                 ///< a path, or a name to be looked for
  std::vector<std::string> arguments;  ///< without the field codes, which stand for files

  bool operator==(const ExecLine&) const = default;
};

/// Looks through `env`, assignments of variables and `sh -c`. Nothing for a line that is empty, quoted
/// wrongly, or longer than any sensible one.
std::optional<ExecLine> parseExecLine(const std::string& exec);

/// Whether a program of that name runs other programs, or scripts, so that its own path says nothing of the
/// application: shells, interpreters, launchers.
bool runsOthers(std::string_view programName);

}  // namespace tarn
