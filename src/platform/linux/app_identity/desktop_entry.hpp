// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Desktop files, as the Desktop Entry Specification defines them
// (https://specifications.freedesktop.org/desktop-entry-spec).

#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// The keys of a desktop file that decide which processes belong to the application.
struct DesktopEntry {
  std::string exec;             ///< Exec: a command line with quotes and field codes
  bool isListed = true;         ///< false if NoDisplay is set: menus do not show the application
  bool runsInTerminal = false;  ///< Terminal: its processes belong to the terminal emulator

  bool operator==(const DesktopEntry&) const = default;
};

/// Reads a desktop file. nullopt for a file that is not regular, too large, not a valid key file, not of
/// "Type=Application", or marked as deleted (Hidden). Never blocks.
std::optional<DesktopEntry> readDesktopEntry(const std::string& path);

/// How an application is shown. Either text may be empty.
struct DesktopAppearance {
  std::string name;  ///< Name, in the user's language
  std::string icon;  ///< Icon: a name in the icon theme, or an absolute path
};

/// nullopt in the same cases as `readDesktopEntry`. Never blocks.
std::optional<DesktopAppearance> readDesktopAppearance(const std::string& path);

/// The program that an Exec key starts, and its arguments.
struct ExecCommand {
  std::string program;                 ///< a path, or a name to be found in PATH
  std::vector<std::string> arguments;  ///< without field codes, which stand for files

  bool operator==(const ExecCommand&) const = default;
};

/// Parses the value of an Exec key. `env`, variable assignments and `sh -c` are skipped: the command is the
/// program that they start. nullopt for a value that is empty, quoted wrongly, or longer than 4096 bytes.
std::optional<ExecCommand> parseExecKey(const std::string& exec);

/// Whether a program of this name runs other programs or scripts, so that its path does not identify an
/// application: a shell, an interpreter, a launcher such as `flatpak`.
bool isLauncher(std::string_view programName);

}  // namespace tarn
