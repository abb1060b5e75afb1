// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "extras/extras_reader.hpp"

#include <algorithm>
#include <utility>

namespace tarn {

namespace {

std::uint64_t clampToByteCount(std::int64_t capacity) {
  return static_cast<std::uint64_t>(std::max<std::int64_t>(capacity, 0));
}

}  // namespace

ExtrasReader::ExtrasReader(ExtrasPort port)
    : port_(std::move(port)), thermal_(std::exchange(port_.temperatures, nullptr)) {}

SystemExtras ExtrasReader::read() const {
  SystemExtras extras;
  extras.storage = storage(port_);
  extras.battery = BatteryInfo::read(port_.power);
  extras.temperatureCelsius = thermal_.averageCelsius();
  extras.uptime = port_.uptime();
  return extras;
}

ThermalState ExtrasReader::thermalState() const {
  return port_.thermalState();
}

std::optional<StorageInfo> ExtrasReader::storage(const ExtrasPort& port) {
  const std::optional<VolumeValues> values = port.rootVolume();
  if (!values || !values->totalCapacity || !values->availableCapacityForImportantUsage) return std::nullopt;
  return StorageInfo{values->name.value_or("Macintosh HD"), clampToByteCount(*values->totalCapacity),
                     clampToByteCount(*values->availableCapacityForImportantUsage)};
}

}  // namespace tarn
