// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>

namespace tarn::UptimeFormatting {

/// Seconds since the start as "59 min", "1 hour, 1 min" or "2 days, 5 hours"; fractions of a second are
/// dropped, negative values and what is not a number are "0 min". A value beyond 64 bits stops the program.
std::string string(double seconds);

}  // namespace tarn::UptimeFormatting
