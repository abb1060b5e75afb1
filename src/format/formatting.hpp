// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Byte counts, percentages and durations as text. All text is UTF-8. Digits, grouping and the percent pattern
// follow the user's locale; unit words are English.

#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tarn {

/// Formats byte counts. Each platform implements it. Units are multiples of 1024: bytes, KB, MB and GB, with
/// at most 0, 0, 1 and 2 fraction digits and no trailing zeros. GB is the largest unit. Zero is written as a
/// digit. Thread: any, also concurrently.
class ByteCountFormatter {
 public:
  virtual ~ByteCountFormatter() = default;
  virtual std::string string(std::int64_t byteCount) const = 0;
};

/// Formats a fraction (1.0 is "100%") as a whole percentage. Each platform implements it. Rounds half to even
/// on the shortest decimal form of the fraction. Returns nullopt when the system's formatter fails. Thread:
/// any, also concurrently.
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

namespace ByteFormatting {

/// A byte count such as "16 GB"; `formatter` chooses unit and digits. A count above the largest std::int64_t
/// is clamped to it.
std::string string(std::uint64_t byteCount, const ByteCountFormatter& formatter);

}  // namespace ByteFormatting

namespace CPUFormatting {

/// A percentage of one core as a whole number, such as "12%" or "250%". A value below 0.5 and NaN give "0%".
/// Plain decimal digits replace the locale's pattern when `formatter` fails.
std::string string(double percentOfOneCore, const PercentFormatter& formatter);

}  // namespace CPUFormatting

namespace UptimeFormatting {

/// A duration in seconds as "59 min", "1 hour, 1 min" or "2 days, 5 hours". Fractions of a second are
/// dropped. Negative values and NaN give "0 min". A value that does not fit std::int64_t aborts the program.
std::string string(double seconds);

}  // namespace UptimeFormatting

}  // namespace tarn
