// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>
#include <vector>

#include "platform/linux/procfs/linux_roots.hpp"
#include "sampling/process_source.hpp"

namespace tarn {

/// The information dictionary of an application: of one that is known by its desktop file the name in the
/// user's language; of a ".app" directory the texts of its property list, with GNUstep's keys translated.
/// Empty where there is neither.
InformationDictionary applicationInformation(const LinuxRoots& roots, const std::string& path);

/// Files that may be the picture of a ".app" directory, the likelier ones first.
std::vector<std::string> bundlePictures(const std::string& bundle);

}  // namespace tarn
