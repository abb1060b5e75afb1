// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Stubs of the Objective-C++ files, whose frameworks exist on a Mac only.

#include "platform/macos/system/foundation.hpp"
#include "platform/macos/system/mac_system.hpp"

namespace tarn::macos {

void withAutoreleasePool(const std::function<void()>& task) {
  task();
}

std::string byteCountText(std::int64_t byteCount) {
  return std::to_string(byteCount);
}

std::optional<std::string> percentText(double fraction) {
  return std::to_string(fraction);
}

std::map<std::string, std::string, std::less<>> bundleInformation(const std::string& /*path*/) {
  return {};
}

std::optional<VolumeValues> rootVolumeValues() {
  return std::nullopt;
}

double systemUptime() {
  return 0;
}

std::int64_t thermalState() {
  return 0;
}

std::int64_t activeProcessorCount() {
  return 1;
}

const ObjectFunctions& objectFunctions() {
  static const ObjectFunctions functions = {};
  return functions;
}

const PowerFunctions& powerFunctions() {
  static const PowerFunctions functions = {};
  return functions;
}

}  // namespace tarn::macos
