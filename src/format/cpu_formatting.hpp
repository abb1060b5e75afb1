// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>

#include "format/formatting.hpp"

namespace tarn::CPUFormatting {

/// A share in percent of one core as whole percents, such as "12%" or "250%". Anything below half a percent,
/// and what is not a number, is "0%".
std::string string(double percentOfOneCore, const PercentFormatter& formatter = platformPercentFormatter());

}  // namespace tarn::CPUFormatting
