// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/app_identity/desktop_entry.hpp"

#include <glib.h>

#include <memory>

#include "platform/linux/procfs/file_reading.hpp"

namespace tarn {

namespace {

constexpr auto group = "Desktop Entry";

using KeyFile = std::unique_ptr<GKeyFile, decltype(&g_key_file_free)>;

std::string takeText(char* text) {
  const std::unique_ptr<char, decltype(&g_free)> owned(text, g_free);
  return text == nullptr ? std::string() : std::string(text);
}

std::string textOf(const KeyFile& file, const char* key) {
  return takeText(g_key_file_get_string(file.get(), group, key, nullptr));
}

std::string localTextOf(const KeyFile& file, const char* key) {
  return takeText(g_key_file_get_locale_string(file.get(), group, key, nullptr, nullptr));
}

bool isTrue(const KeyFile& file, const char* key) {
  return g_key_file_get_boolean(file.get(), group, key, nullptr) != 0;
}

/// An application's desktop file; null for anything else.
KeyFile load(const std::string& path) {
  // The largest ones hold their texts in a hundred languages.
  constexpr std::size_t largest = std::size_t{256} << 10;
  KeyFile file(g_key_file_new(), g_key_file_free);
  const std::string text = readFile(path, largest + 1);
  const bool isApplication =
      !text.empty() && text.size() <= largest && text.find('\0') == std::string::npos &&
      g_key_file_load_from_data(file.get(), text.data(), text.size(), G_KEY_FILE_NONE, nullptr) != 0 &&
      textOf(file, "Type") == "Application" && !isTrue(file, "Hidden");
  if (!isApplication) file.reset();
  return file;
}

}  // namespace

std::optional<DesktopEntry> readDesktopEntry(const std::string& path) {
  const KeyFile file = load(path);
  if (!file) return std::nullopt;
  return DesktopEntry{textOf(file, "Exec"), !isTrue(file, "NoDisplay"), isTrue(file, "Terminal")};
}

std::optional<DesktopAppearance> readDesktopAppearance(const std::string& path) {
  const KeyFile file = load(path);
  if (!file) return std::nullopt;
  return DesktopAppearance{localTextOf(file, "Name"), localTextOf(file, "Icon")};
}

}  // namespace tarn
