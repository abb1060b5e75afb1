// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include "extras/ports.hpp"
#include "platform/macos/readers/power_functions.hpp"

namespace tarn::macos {

/// The machine's power supply. Every call asks the system afresh and releases what it obtained.
PowerPort macPowerPort(const PowerFunctions& power, const ObjectFunctions& objects);

}  // namespace tarn::macos
