// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/app_identity/application_information.hpp"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "platform/linux/app_identity/desktop_entry.hpp"
#include "platform/linux/app_identity/property_list.hpp"
#include "platform/linux/procfs/file_reading.hpp"
#include "sampling/bundle_path.hpp"

namespace tarn {

namespace {

InformationDictionary bundleTexts(const std::string& bundle) {
  return parsePropertyTexts(readFile(bundle + "/Resources/Info-gnustep.plist"));
}

}  // namespace

InformationDictionary applicationInformation(const LinuxRoots& roots, const std::string& path) {
  if (!path.ends_with(".desktop")) {
    InformationDictionary texts = bundleTexts(roots.root + path);
    const auto name = texts.find("ApplicationName");
    if (name != texts.end()) texts.try_emplace("CFBundleName", name->second);
    return texts;
  }
  const auto appearance = readDesktopAppearance(roots.root + path);
  if (!appearance || appearance->name.empty()) return {};
  return {{"CFBundleDisplayName", appearance->name}};
}

std::vector<std::string> bundlePictures(const std::string& bundle) {
  const InformationDictionary texts = bundleTexts(bundle);
  std::vector<std::string> pictures;
  for (const auto* key : {"NSIcon", "ApplicationIcon"}) {
    const auto entry = texts.find(key);
    if (entry == texts.end() || entry->second.empty() || entry->second.find('/') != std::string::npos)
      continue;
    const std::string resources = bundle + "/Resources";
    pictures.push_back(resources + '/' + entry->second);
    // The name may lack the picture's kind and size.
    const std::string_view stem = deletingPathExtension(entry->second);
    std::vector<std::string> similar;
    std::error_code error;
    std::filesystem::directory_iterator file(resources, error);
    for (; !error && file != std::filesystem::directory_iterator(); file.increment(error)) {
      if (file->path().filename().native().starts_with(stem)) similar.push_back(file->path().string());
    }
    std::sort(similar.begin(), similar.end());
    pictures.insert(pictures.end(), similar.begin(), similar.end());
  }
  return pictures;
}

}  // namespace tarn
