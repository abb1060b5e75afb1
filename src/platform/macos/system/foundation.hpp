// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The functions of Foundation that Tarn uses, with types of the standard library. Thread: any; byteCountText
// and percentText only on the main thread.

#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>

#include "extras/ports.hpp"

namespace tarn::macos {

/// Runs `task` in an autorelease pool. The threads of the task queues have none and would keep autoreleased
/// objects until they end.
void withAutoreleasePool(const std::function<void()>& task);

/// A byte count by NSByteCountFormatter's memory style in bytes, KB, MB or GB. UTF-8, in the user's locale.
/// The formatter is created at the first call.
std::string byteCountText(std::int64_t byteCount);

/// A fraction (1.0 is "100%") as a whole percentage by NSNumberFormatter; nullopt when it returns nil.
/// The formatter is created at the first call.
std::optional<std::string> percentText(double fraction);

/// The string values of the information dictionary of the bundle at a path; empty when there is no bundle.
std::map<std::string, std::string, std::less<>> bundleInformation(const std::string& path);

/// CFBundleShortVersionString of the main bundle; nullopt when it is missing or not a string.
std::optional<std::string> shortVersion();

/// Capacities and name of the start-up volume; nullopt when the request fails.
std::optional<VolumeValues> rootVolumeValues();

/// Seconds since the system started, excluding sleep.
double systemUptime();

/// NSProcessInfoThermalState: 0 is nominal, 3 is critical.
std::int64_t thermalState();

/// Number of active processor cores.
std::int64_t activeProcessorCount();

}  // namespace tarn::macos
