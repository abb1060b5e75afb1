// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// What the test and its library in the place of the system's know of each other.

#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tarn::macos {

/// An object of the fake frameworks.
struct FakeObject {
  enum class Kind { client, dictionary, array, event, other };

  Kind kind = Kind::other;
  std::vector<const FakeObject*> items;  ///< of an array; not owned
  double reading = 0;                    ///< of an event
};

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

  std::vector<std::string> calls;
  int created = 0;   ///< objects handed out to be released
  int released = 0;  ///< by the test's own release
};

}  // namespace tarn::macos
