// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Shared by the test and the fake library that it loads instead of IOKit.

#pragma once

#include <string>
#include <vector>

#include "platform/macos/readers/fake_objects.hpp"

namespace tarn::macos {

/// One sensor. It has no reading when `hasEvent` is false.
struct FakeSensor {
  bool hasEvent = true;
  double celsius = 0;
  FakeObject service = {};
};

/// The values that the fake library returns, and the calls that it receives. Owned by the test.
struct FakeEventSystem {
  std::vector<FakeSensor> sensors;
  bool refusesClients = false;
  bool hasNoServices = false;
  bool givesServicesOfAnotherKind = false;

  FakeFrameworks* frameworks = nullptr;  ///< creates and counts objects

  std::vector<std::string> calls;
};

}  // namespace tarn::macos
