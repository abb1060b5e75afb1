// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// What Tarn asks of Foundation, in standard types. Any thread; the two formatters on the main thread.

#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>

#include "extras/ports.hpp"

namespace tarn::macos {

/// Runs what may leave objects to the thread's autorelease pool, in one of its own: the threads of our queues
/// have none, and would keep such objects until they end.
void withAutoreleasePool(const std::function<void()>& task);

/// A byte count in the system's memory style, in bytes, KB, MB or GB. UTF-8 in the user's locale. The
/// formatter is made at the first call and kept.
std::string byteCountText(std::int64_t byteCount);

/// A fraction (1.0 is "100%") in whole percents; nothing when the formatter gives no text. Likewise kept.
std::optional<std::string> percentText(double fraction);

/// The text entries of the information dictionary of the bundle at a path; empty when there is none.
std::map<std::string, std::string, std::less<>> bundleInformation(const std::string& path);

/// This program's own short version; nothing when its bundle has none, or one that is no text.
std::optional<std::string> shortVersion();

/// Capacities and name of the start-up volume; nothing when the request fails.
std::optional<VolumeValues> rootVolumeValues();

/// Seconds since the system started, without the time it slept.
double systemUptime();

/// The system's own number for its thermal state: 0 is nominal, 3 is critical.
std::int64_t thermalState();

/// Number of processors that are active.
std::int64_t activeProcessorCount();

}  // namespace tarn::macos
