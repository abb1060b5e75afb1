// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Calls every part of the macOS port that needs no framework, so that the linker checks all of it.

#include "extras/extras_reader.hpp"
#include "platform/macos/readers/kernel_readers.hpp"
#include "platform/macos/system/mac_system.hpp"
#include "sampling/memory_sampler.hpp"

using namespace tarn;

int main() {
  macos::setCurrentThreadName("com.tarn.sampler");
  MemorySampler sampler(macos::makeMacSamplerPort());
  const ExtrasReader extras(macos::makeMacExtrasPort());
  const macos::DispatchPressureSource pressure(macos::dispatchFunctions());
  const MemorySnapshot snapshot = sampler.sample();
  const Formatters formatters = macos::systemFormatters();
  const bool formats = !formatters.bytes.string(1).empty() && formatters.percents.string(1);
  return !formats || extras.read().uptime < 0 || snapshot.groups.empty() ||
         macos::readPressureLevel(macos::kernelFunctions()).value_or(1) < 0 ||
         macos::clampedProcessorCount() < 1;
}
