// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <optional>
#include <string>

namespace tarn {

/// What a desktop file says of an application, as far as it decides which processes are the application's.
struct DesktopEntry {
  std::string exec;           ///< the command line, with its field codes and quotes
  bool isListed = true;       ///< among the applications that a person can choose
  bool isInTerminal = false;  ///< it runs in a terminal, whose processes are the terminal's

  bool operator==(const DesktopEntry&) const = default;
};

/// The entry in a file; nothing for what is no regular file of reasonable size, for other text, and for
/// entries that are no application or are marked as deleted. Never waits.
std::optional<DesktopEntry> readDesktopEntry(const std::string& path);

/// What a desktop file calls the application in the user's language, and how it names its icon; nothing in
/// the cases above. Either may be empty.
struct DesktopAppearance {
  std::string name;
  std::string icon;  ///< the name of an icon of the theme, or a path
};
std::optional<DesktopAppearance> readDesktopAppearance(const std::string& path);

}  // namespace tarn
