// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// Names and the number that each stands for, in little memory: filled, then closed, then asked.
class NameTable {
 public:
  void clear();

  /// Of several numbers for one name the one with the least weight counts; of those, the first.
  void offer(std::string_view name, std::uint32_t number, std::uint32_t weight);

  void close();

  /// Nothing for a name that was not offered. After `close` only.
  std::optional<std::uint32_t> find(std::string_view name) const;

 private:
  struct Entry {
    std::uint32_t offset = 0;  ///< of its name in `names_`
    std::uint32_t length = 0;
    std::uint32_t number = 0;
    std::uint32_t weight = 0;
  };

  std::string_view nameOf(const Entry& entry) const {
    return std::string_view(names_).substr(entry.offset, entry.length);
  }

  std::string names_;  ///< one behind the other
  std::vector<Entry> entries_;
};

}  // namespace tarn
