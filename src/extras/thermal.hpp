// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <string>

namespace tarn {

/// The platform's thermal state; the values are the platform's own, and any other means that it is unknown.
enum class ThermalState { unknown = -1, nominal = 0, fair = 1, serious = 2, critical = 3 };

/// The state that the platform's own number stands for.
ThermalState thermalStateFromRawValue(std::int64_t rawValue);

/// The state in words, such as "Running cool".
std::string thermalPhrase(ThermalState state);

}  // namespace tarn
