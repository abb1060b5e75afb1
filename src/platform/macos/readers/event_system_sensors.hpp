// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <vector>

#include "platform/macos/readers/event_system.hpp"
#include "platform/macos/readers/framework_objects.hpp"

namespace tarn::macos {

/// The machine's temperature sensors, as services of the event system. Used on one thread at a time.
class EventSystemSensors {
 public:
  EventSystemSensors(const EventSystemFunctions& events, const ObjectFunctions& objects)
      : events_(events), objects_(objects) {}

  /// The reading of each sensor that has one, degrees Celsius, in the system's order. Makes a client of the
  /// event system and releases it with all that it gave. Calls nothing unless all functions were found.
  std::vector<double> readings() const;

 private:
  std::vector<double> readingsOf(ObjectRef services) const;

  EventSystemFunctions events_;
  ObjectFunctions objects_;
};

}  // namespace tarn::macos
