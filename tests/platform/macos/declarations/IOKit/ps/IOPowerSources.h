// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Declarations of the part of IOKit's power sources that Tarn uses, written from the public documentation.
// They suffice to check types without the framework.

#pragma once

#include <CoreFoundation/CoreFoundation.h>

extern "C" {

CFTypeRef IOPSCopyPowerSourcesInfo(void);
CFArrayRef IOPSCopyPowerSourcesList(CFTypeRef blob);
CFDictionaryRef IOPSGetPowerSourceDescription(CFTypeRef blob, CFTypeRef ps);

}  // extern "C"
