// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The parts of MacPlatform that need neither Qt nor AppKit, and the running system's functions for the
// readers.

#pragma once

#include <string>

#include "extras/ports.hpp"
#include "format/formatting.hpp"
#include "platform/macos/readers/dispatch_pressure_source.hpp"
#include "platform/macos/readers/framework_objects.hpp"
#include "platform/macos/readers/kernel.hpp"
#include "platform/macos/readers/mac_extras.hpp"
#include "sampling/process_source.hpp"

namespace tarn::macos {

// The running system's functions. They exist until the process ends. Thread: any.
const KernelFunctions& kernelFunctions();
const DispatchFunctions& dispatchFunctions();
const ObjectFunctions& objectFunctions();
const PowerFunctions& powerFunctions();

SamplerPort makeMacSamplerPort();
ExtrasPort makeMacExtrasPort();

/// Formatters of the user's locale; they exist until the process ends.
Formatters systemFormatters();

/// Number of active processors, within the range of int.
int clampedProcessorCount();

/// Names the calling thread and gives it the utility quality of service. Any thread.
void setCurrentThreadName(const std::string& name);

}  // namespace tarn::macos
