// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>

namespace tarn {

/// Text that is written once and shared by its copies: a copy takes no memory of its own. Paths and names of
/// processes are the same in each sweep, and are kept once for all the snapshots that bear them. Any thread.
class SharedText {
 public:
  SharedText() = default;
  // NOLINTBEGIN(google-explicit-constructor): it is text like any other
  SharedText(std::string text)
      : text_(text.empty() ? nullptr : std::make_shared<const std::string>(std::move(text))) {}
  SharedText(const char* text) : SharedText(std::string(text)) {}
  operator std::string_view() const { return string(); }
  // NOLINTEND(google-explicit-constructor)

  /// Valid as long as a copy is.
  const std::string& string() const {
    static const std::string empty;
    return text_ ? *text_ : empty;
  }
  bool empty() const { return text_ == nullptr; }

  bool operator==(const SharedText& other) const {
    return text_ == other.text_ || string() == other.string();
  }
  bool operator==(std::string_view other) const { return string() == other; }
  bool operator==(const char* other) const { return string() == other; }
  bool operator==(const std::string& other) const { return string() == other; }

 private:
  std::shared_ptr<const std::string> text_;  // null for the empty text
};

inline std::ostream& operator<<(std::ostream& stream, const SharedText& text) {
  return stream << text.string();
}

}  // namespace tarn
