// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/procfs/linux_roots.hpp"
#include "sampling/process_source.hpp"

namespace tarn {

/// The information dictionary of an application. For the path of a desktop file: its name in the user's
/// language as CFBundleDisplayName. For the path of a GNUstep ".app" directory: the strings of its property
/// list, with ApplicationName as CFBundleName. Empty if the file cannot be read.
InformationDictionary applicationInformation(const LinuxRoots& roots, const std::string& path);

/// Files that may be the icon of a GNUstep ".app" directory, most likely first.
std::vector<std::string> bundleIconFiles(const std::string& bundle);

/// The string entries of the dictionary in a property list of GNUstep's text format: { Key = "text"; }.
/// Entries of other types are skipped. Parsing stops at the first syntax error; entries before it are
/// returned.
InformationDictionary parsePropertyList(std::string_view text);

}  // namespace tarn
