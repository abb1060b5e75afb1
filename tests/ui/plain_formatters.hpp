// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Formatters with fixed English texts. They are independent of the platform and the locale.

#pragma once

#include <QString>
#include <array>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>

#include "format/formatting.hpp"

namespace tarn {

class PlainByteCountFormatter final : public ByteCountFormatter {
 public:
  std::string string(std::int64_t byteCount) const override {
    struct Unit {
      double bytes;
      int digits;  ///< maximum number of fraction digits
      const char* name;
    };
    constexpr std::array units{Unit{1024.0 * 1024 * 1024, 2, " GB"}, Unit{1024.0 * 1024, 1, " MB"},
                               Unit{1024.0, 0, " KB"}};
    for (const Unit& unit : units) {
      if (static_cast<double>(byteCount) < unit.bytes) continue;
      const double scale = std::pow(10.0, unit.digits);
      const double rounded = std::round(static_cast<double>(byteCount) / unit.bytes * scale) / scale;
      return QString::number(rounded, 'g', 15).toStdString() + unit.name;
    }
    return std::to_string(byteCount) + (byteCount == 1 ? " byte" : " bytes");
  }
};

class PlainPercentFormatter final : public PercentFormatter {
 public:
  std::optional<std::string> string(double fraction) const override {
    return std::to_string(std::lround(fraction * 100)) + '%';
  }
};

inline const Formatters& plainFormatters() {
  static const PlainByteCountFormatter bytes;
  static const PlainPercentFormatter percents;
  static const Formatters formatters{bytes, percents};
  return formatters;
}

}  // namespace tarn
