// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/app_identity/application_information.hpp"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <optional>
#include <system_error>

#include "platform/linux/app_identity/desktop_entry.hpp"
#include "platform/linux/procfs/file_reading.hpp"
#include "sampling/bundle_path.hpp"

namespace tarn {

namespace {

/// Reads the tokens of a property list from front to back. Whitespace and comments between them are skipped.
class PropertyListScanner {
 public:
  explicit PropertyListScanner(std::string_view text) : rest_(text) {}

  /// Consumes `character` if it is the next token. Returns whether it was.
  bool take(char character) {
    skipWhitespace();
    if (!rest_.starts_with(character)) return false;
    rest_.remove_prefix(1);
    return true;
  }

  /// Consumes a string, with or without quotes. nullopt if there is none.
  std::optional<std::string> takeString() {
    if (take('"')) return takeQuoted();
    std::string text;
    while (!rest_.empty() && isPlain(rest_.front())) {
      text += rest_.front();
      rest_.remove_prefix(1);
    }
    if (text.empty()) return std::nullopt;
    return text;
  }

  /// Skips a dictionary, an array or data, including nested values. Returns false if the value is incomplete.
  bool skipValue() {
    int depth = 0;
    do {
      skipWhitespace();
      if (rest_.empty()) return false;
      const char next = rest_.front();
      if (next == '"') {
        if (!takeString()) return false;
        continue;
      }
      if (next == '{' || next == '(' || next == '<') ++depth;
      if (next == '}' || next == ')' || next == '>') --depth;
      rest_.remove_prefix(1);
    } while (depth > 0);
    return true;
  }

 private:
  /// Whether a string without quotes may contain `character`.
  static bool isPlain(char character) {
    constexpr std::string_view punctuation = "_-./:$+*@%&";
    return std::isalnum(static_cast<unsigned char>(character)) != 0 ||
           punctuation.find(character) != std::string_view::npos;
  }

  void skipWhitespace() {
    while (!rest_.empty()) {
      const std::size_t end = rest_.find_first_not_of(" \t\r\n");
      rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end);
      if (rest_.starts_with("/*")) {
        skipComment("*/");
      } else if (rest_.starts_with("//")) {
        skipComment("\n");
      } else {
        return;
      }
    }
  }

  /// Skips a comment, which starts with two characters, and its `end`.
  void skipComment(std::string_view end) {
    const std::size_t position = rest_.find(end, 2);
    rest_.remove_prefix(position == std::string_view::npos ? rest_.size() : position + end.size());
  }

  std::optional<std::string> takeQuoted() {
    std::string text;
    while (!rest_.empty()) {
      char character = rest_.front();
      rest_.remove_prefix(1);
      if (character == '"') return text;
      if (character == '\\' && !rest_.empty()) {
        character = rest_.front() == 'n' ? '\n' : rest_.front();
        rest_.remove_prefix(1);
      }
      text += character;
    }
    return std::nullopt;
  }

  std::string_view rest_;
};

InformationDictionary readBundleInformation(const std::string& bundle) {
  return parsePropertyList(readFile(bundle + "/Resources/Info-gnustep.plist"));
}

/// Files in a directory whose names begin with `prefix`, sorted by name.
std::vector<std::string> filesWithPrefix(const std::string& directory, std::string_view prefix) {
  std::vector<std::string> files;
  std::error_code error;
  std::filesystem::directory_iterator file(directory, error);
  for (; !error && file != std::filesystem::directory_iterator(); file.increment(error)) {
    if (file->path().filename().native().starts_with(prefix)) files.push_back(file->path().string());
  }
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace

InformationDictionary applicationInformation(const LinuxRoots& roots, const std::string& path) {
  if (!path.ends_with(".desktop")) {
    InformationDictionary information = readBundleInformation(roots.root + path);
    const auto name = information.find("ApplicationName");
    if (name != information.end()) information.try_emplace("CFBundleName", name->second);
    return information;
  }
  const auto appearance = readDesktopAppearance(roots.root + path);
  if (!appearance || appearance->name.empty()) return {};
  return {{"CFBundleDisplayName", appearance->name}};
}

std::vector<std::string> bundleIconFiles(const std::string& bundle) {
  const InformationDictionary information = readBundleInformation(bundle);
  std::vector<std::string> files;
  for (const auto* key : {"NSIcon", "ApplicationIcon"}) {
    const auto entry = information.find(key);
    // A slash could lead out of the bundle.
    if (entry == information.end() || entry->second.empty() || entry->second.find('/') != std::string::npos)
      continue;
    const std::string resources = bundle + "/Resources";
    files.push_back(resources + '/' + entry->second);
    // The entry may omit the suffix and size of the file: "editor" for "editor_128x128.png".
    const auto similar = filesWithPrefix(resources, deletingPathExtension(entry->second));
    files.insert(files.end(), similar.begin(), similar.end());
  }
  return files;
}

InformationDictionary parsePropertyList(std::string_view text) {
  InformationDictionary entries;
  PropertyListScanner scanner(text);
  if (!scanner.take('{')) return entries;
  while (const auto key = scanner.takeString()) {
    if (!scanner.take('=')) return entries;
    if (auto value = scanner.takeString()) {
      entries.insert_or_assign(*key, std::move(*value));
    } else if (!scanner.skipValue()) {
      return entries;
    }
    if (!scanner.take(';')) return entries;
  }
  return entries;
}

}  // namespace tarn
