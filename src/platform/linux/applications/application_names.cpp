// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/applications/application_names.hpp"

#include "platform/linux/applications/desktop_entry.hpp"

namespace tarn {

InformationDictionary desktopFileInformation(const LinuxRoots& roots, const std::string& path) {
  if (!path.ends_with(".desktop")) return {};
  const auto appearance = readDesktopAppearance(roots.root + path);
  if (!appearance || appearance->name.empty()) return {};
  return {{"CFBundleDisplayName", appearance->name}};
}

}  // namespace tarn
