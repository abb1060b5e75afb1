// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/app_identity/property_list.hpp"

#include <cctype>
#include <optional>

namespace tarn {

namespace {

/// Reads a property list from its front to its end.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : rest_(text) {}

  /// Takes the next character, if it is this one, with blanks and comments before it.
  bool take(char character) {
    skipBlanks();
    if (!rest_.starts_with(character)) return false;
    rest_.remove_prefix(1);
    return true;
  }

  /// Takes a text, in quotes or without; nothing where there is none.
  std::optional<std::string> takeText() {
    if (take('"')) return takeQuoted();
    std::string text;
    while (!rest_.empty() && isPlain(rest_.front())) {
      text += rest_.front();
      rest_.remove_prefix(1);
    }
    if (text.empty()) return std::nullopt;
    return text;
  }

  /// Takes a value of another kind, whatever is in it. False where none ends.
  bool skipValue() {
    int depth = 0;
    do {
      skipBlanks();
      if (rest_.empty()) return false;
      const char next = rest_.front();
      if (next == '"') {
        if (!takeText()) return false;
        continue;
      }
      if (next == '{' || next == '(' || next == '<') ++depth;
      if (next == '}' || next == ')' || next == '>') --depth;
      rest_.remove_prefix(1);
    } while (depth > 0);
    return true;
  }

 private:
  static bool isPlain(char character) {
    constexpr std::string_view others = "_-./:$+*@%&";
    return std::isalnum(static_cast<unsigned char>(character)) != 0 ||
           others.find(character) != std::string_view::npos;
  }

  void skipBlanks() {
    while (!rest_.empty()) {
      const std::size_t blanks = rest_.find_first_not_of(" \t\r\n");
      rest_.remove_prefix(blanks == std::string_view::npos ? rest_.size() : blanks);
      if (rest_.starts_with("/*")) {
        skipPast("*/");
      } else if (rest_.starts_with("//")) {
        skipPast("\n");
      } else {
        return;
      }
    }
  }

  void skipPast(std::string_view end) {
    const std::size_t found = rest_.find(end, 2);
    rest_.remove_prefix(found == std::string_view::npos ? rest_.size() : found + end.size());
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

}  // namespace

std::map<std::string, std::string, std::less<>> parsePropertyTexts(std::string_view text) {
  std::map<std::string, std::string, std::less<>> entries;
  Scanner scanner(text);
  if (!scanner.take('{')) return entries;
  while (const auto key = scanner.takeText()) {
    if (!scanner.take('=')) return entries;
    if (auto value = scanner.takeText()) {
      entries.insert_or_assign(*key, std::move(*value));
    } else if (!scanner.skipValue()) {
      return entries;
    }
    if (!scanner.take(';')) return entries;
  }
  return entries;
}

}  // namespace tarn
