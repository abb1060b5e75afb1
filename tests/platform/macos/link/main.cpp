// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Reaches everything of the macOS port that needs no framework, so that all of it is linked.

#include "extras/extras_reader.hpp"
#include "format/formatting.hpp"
#include "monitor/active_processors.hpp"
#include "monitor/pressure_source.hpp"
#include "monitor/thread_name.hpp"
#include "sampling/memory_sampler.hpp"

int main() {
  tarn::setCurrentThreadName("com.tarn.sampler");
  tarn::MemorySampler sampler(tarn::platformSamplerPort());
  const tarn::ExtrasReader extras(tarn::platformExtrasPort());
  const auto pressure = tarn::platformPressureSource();
  const tarn::MemorySnapshot snapshot = sampler.sample();
  const std::string texts =
      tarn::ByteFormatting::string(snapshot.attributedTotal(), tarn::platformByteCountFormatter()) +
      tarn::CPUFormatting::string(snapshot.totalCPUPercent(), tarn::platformPercentFormatter());
  return texts.empty() || extras.read().uptime < 0 || tarn::platformPressureLevel().value_or(1) < 0 ||
                 tarn::platformActiveProcessorCount() < 1
             ? 1
             : 0;
}
