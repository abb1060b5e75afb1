// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "sampling/bundle_path.hpp"

namespace tarn {

std::optional<std::string> outermostBundle(std::string_view path) {
  std::string prefix;
  while (!path.empty()) {
    const std::size_t slash = path.find('/');
    const std::string_view component = path.substr(0, slash);
    path = slash == std::string_view::npos ? std::string_view{} : path.substr(slash + 1);
    if (component.empty()) continue;
    prefix += '/';
    prefix += component;
    if (component.ends_with(".app")) return prefix;
  }
  return std::nullopt;
}

std::string_view lastPathComponent(std::string_view path) {
  while (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
  const std::size_t slash = path.rfind('/');
  if (slash == std::string_view::npos || path.size() == 1) return path;
  return path.substr(slash + 1);
}

std::string_view deletingPathExtension(std::string_view name) {
  const std::size_t dot = name.rfind('.');
  if (dot == std::string_view::npos || dot == 0) return name;
  return name.substr(0, dot);
}

}  // namespace tarn
