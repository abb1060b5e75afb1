// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// What the test and its library in the place of the system's know of each other.

#pragma once

#include <string>
#include <vector>

#include "platform/macos/readers/fake_objects.hpp"

namespace tarn::macos {

/// One sensor. Without an event it has no reading.
struct FakeSensor {
  bool hasEvent = true;
  double celsius = 0;
  FakeObject service = {};
};

/// What a library does, and what it was asked for. Belongs to the test.
struct FakeEventSystem {
  std::vector<FakeSensor> sensors;
  bool refusesClients = false;
  bool hasNoServices = false;
  bool givesServicesOfAnotherKind = false;

  FakeFrameworks* frameworks = nullptr;  ///< hand out objects and count them

  std::vector<std::string> calls;
};

}  // namespace tarn::macos
