// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Declarations of our own, after the public documentation, of what Tarn uses of IOKit's power sources:
// enough to check types where the framework is not at hand.

#pragma once

#include <CoreFoundation/CoreFoundation.h>

extern "C" {

CFTypeRef IOPSCopyPowerSourcesInfo(void);
CFArrayRef IOPSCopyPowerSourcesList(CFTypeRef blob);
CFDictionaryRef IOPSGetPowerSourceDescription(CFTypeRef blob, CFTypeRef ps);

}  // extern "C"
