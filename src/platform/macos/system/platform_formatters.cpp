// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "format/formatting.hpp"

#include "platform/macos/foundation/foundation.hpp"

namespace tarn {

namespace {

class SystemByteCountFormatter final : public ByteCountFormatter {
 public:
  std::string string(std::int64_t byteCount) const override { return macos::byteCountText(byteCount); }
};

class SystemPercentFormatter final : public PercentFormatter {
 public:
  std::optional<std::string> string(double fraction) const override { return macos::percentText(fraction); }
};

}  // namespace

const ByteCountFormatter& platformByteCountFormatter() {
  static const SystemByteCountFormatter formatter;
  return formatter;
}

const PercentFormatter& platformPercentFormatter() {
  static const SystemPercentFormatter formatter;
  return formatter;
}

}  // namespace tarn
