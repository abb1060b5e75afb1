// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>

#include "platform/linux/system/linux_roots.hpp"
#include "sampling/platform_readers.hpp"

namespace tarn {

/// The information dictionary of an application that is known by its desktop file: its name in the user's
/// language. Empty for other paths, and where the file says none.
InformationDictionary desktopFileInformation(const LinuxRoots& roots, const std::string& path);

}  // namespace tarn
