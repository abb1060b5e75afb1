// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The running system's functions for the readers. Any thread.

#pragma once

#include "platform/macos/readers/dispatch_pressure_source.hpp"
#include "platform/macos/readers/framework_objects.hpp"
#include "platform/macos/readers/kernel.hpp"
#include "platform/macos/readers/mac_extras.hpp"

namespace tarn::macos {

const KernelFunctions& kernelFunctions();
const DispatchFunctions& dispatchFunctions();
const ObjectFunctions& objectFunctions();
const PowerFunctions& powerFunctions();

}  // namespace tarn::macos
