// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/sysfs/thermal_state.hpp"

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>

#include "platform/linux/procfs/text_scan.hpp"

namespace tarn {

namespace {

bool isProcessor(const DirectoryEntry& entry) {
  constexpr std::string_view stem = "cpu";
  return entry.name.starts_with(stem) &&
         parseWholeNumber<unsigned>(std::string_view(entry.name).substr(stem.size())).has_value();
}

}  // namespace

void ThrottleCounters::lookForCounters() {
  const std::string processors = sys_ + "/devices/system/cpu";
  counters_.clear();
  std::set<std::string> countedPackages;
  for (const DirectoryEntry& entry : listDirectory(processors)) {
    if (!isProcessor(entry)) continue;
    const std::string processor = processors + '/' + entry.name;
    DeviceDirectory directory(processor + "/thermal_throttle");
    if (directory.number("package_throttle_count")) {
      const std::string package = DeviceDirectory(processor + "/topology").text("physical_package_id");
      if (countedPackages.insert(package).second)
        counters_.push_back({std::move(directory), "package_throttle_count", std::nullopt});
    } else if (directory.number("core_throttle_count")) {
      counters_.push_back({std::move(directory), "core_throttle_count", std::nullopt});
    }
  }
}

std::optional<bool> ThrottleCounters::haveRisen(Time now) {
  constexpr auto longAgo = std::chrono::seconds(10);
  const bool isRecent = now - std::exchange(lastLook_, now) <= longAgo;
  if (!areKnown_) lookForCounters();
  areKnown_ = true;
  std::optional<bool> risen;
  for (Counter& counter : counters_) {
    const auto count = counter.directory.number(counter.file);
    if (!count) {
      areKnown_ = false;
      continue;
    }
    risen = risen.value_or(false) || (isRecent && counter.last && *count > *counter.last);
    counter.last = count;
  }
  return risen;
}

}  // namespace tarn
