// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The parts of MacPlatform that need neither Qt nor AppKit.

#pragma once

#include <string>

#include "extras/ports.hpp"
#include "format/formatting.hpp"
#include "sampling/process_source.hpp"

namespace tarn::macos {

SamplerPort makeMacSamplerPort();
ExtrasPort makeMacExtrasPort();

/// Formatters of the user's locale; they live until the process ends.
Formatters systemFormatters();

/// Number of active processors, within the range of int.
int clampedProcessorCount();

/// Names the calling thread and gives it the utility quality of service. Any thread.
void setCurrentThreadName(const std::string& name);

}  // namespace tarn::macos
