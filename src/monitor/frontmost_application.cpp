// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "monitor/frontmost_application.hpp"

#include <algorithm>

namespace tarn {

const AppGroup* groupOf(const FrontmostApplication& application, const MemorySnapshot& snapshot) {
  const auto& groups = snapshot.groups;
  if (application.bundlePath) {
    const auto byPath = std::find_if(groups.begin(), groups.end(), [&](const AppGroup& group) {
      return group.bundlePath == application.bundlePath;
    });
    if (byPath != groups.end()) return &*byPath;
  }
  const auto holdsProcess = [&](const AppGroup& group) {
    return std::any_of(group.processes.begin(), group.processes.end(), [&](const ProcessSample& process) {
      return process.pid == application.processIdentifier;
    });
  };
  const auto byProcess = std::find_if(groups.begin(), groups.end(), holdsProcess);
  return byProcess == groups.end() ? nullptr : &*byProcess;
}

}  // namespace tarn
