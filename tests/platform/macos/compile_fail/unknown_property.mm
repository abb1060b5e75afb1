// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <Foundation/Foundation.h>

// expected: property 'systemUpTime' not found on object of type
double uptime() {
  return NSProcessInfo.processInfo.systemUpTime;
}
