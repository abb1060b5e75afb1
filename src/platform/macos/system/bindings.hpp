// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/macos/readers/framework_objects.hpp"
#include "platform/macos/readers/power_functions.hpp"

namespace tarn::macos {

/// The functions of the system's frameworks.
const ObjectFunctions& systemObjectFunctions();
const PowerFunctions& systemPowerFunctions();

}  // namespace tarn::macos
