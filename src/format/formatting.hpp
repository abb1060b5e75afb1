// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The two formatters that every platform supplies: on macOS the system's own, on Linux ICU under our own
// rules for units. All texts are UTF-8 in the user's locale.

#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tarn {

/// Writes byte counts with units of 1024: bytes, KB, MB, GB and none above, at most 0, 0, 1 and 2 fraction
/// digits without trailing zeros, zero as a digit.
class ByteCountFormatter {
 public:
  virtual ~ByteCountFormatter() = default;
  virtual std::string string(std::int64_t byteCount) const = 0;
};

/// Writes a fraction (1.0 is "100%") as whole percents, rounding half to even on its shortest decimal form;
/// nothing when the system's formatter fails.
class PercentFormatter {
 public:
  virtual ~PercentFormatter() = default;
  virtual std::optional<std::string> string(double fraction) const = 0;
};

/// The formatters that the UI uses. Both must outlive this struct.
struct Formatters {
  const ByteCountFormatter& bytes;
  const PercentFormatter& percents;
};

/// The running system's formatters for the user's locale: made at the first call (safely against concurrent
/// ones), shared for the life of the process, read-only. Each platform folder defines them.
const ByteCountFormatter& platformByteCountFormatter();
const PercentFormatter& platformPercentFormatter();

}  // namespace tarn
