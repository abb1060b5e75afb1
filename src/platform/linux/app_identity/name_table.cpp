// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/app_identity/name_table.hpp"

#include <algorithm>

namespace tarn {

void NameTable::clear() {
  names_.clear();
  entries_.clear();
}

void NameTable::offer(std::string_view name, std::uint32_t number, std::uint32_t weight) {
  const auto offset = static_cast<std::uint32_t>(names_.size());
  entries_.push_back({offset, static_cast<std::uint32_t>(name.size()), number, weight});
  names_ += name;
}

void NameTable::close() {
  std::stable_sort(entries_.begin(), entries_.end(), [this](const Entry& one, const Entry& other) {
    const int order = nameOf(one).compare(nameOf(other));
    return order != 0 ? order < 0 : one.weight < other.weight;
  });
  const auto end =
      std::unique(entries_.begin(), entries_.end(),
                  [this](const Entry& one, const Entry& other) { return nameOf(one) == nameOf(other); });
  entries_.erase(end, entries_.end());
  entries_.shrink_to_fit();
  names_.shrink_to_fit();
}

std::optional<std::uint32_t> NameTable::find(std::string_view name) const {
  const auto entry =
      std::lower_bound(entries_.begin(), entries_.end(), name,
                       [this](const Entry& one, std::string_view other) { return nameOf(one) < other; });
  if (entry == entries_.end() || nameOf(*entry) != name) return std::nullopt;
  return entry->number;
}

}  // namespace tarn
