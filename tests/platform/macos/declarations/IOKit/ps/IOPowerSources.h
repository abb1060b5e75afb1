// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Declarations of the parts of IOKit's power sources that Tarn uses, written from the public documentation:
// enough to check types on a system without the framework.

#pragma once

#include <CoreFoundation/CoreFoundation.h>

extern "C" {

CFTypeRef IOPSCopyPowerSourcesInfo(void);
CFArrayRef IOPSCopyPowerSourcesList(CFTypeRef blob);
CFDictionaryRef IOPSGetPowerSourceDescription(CFTypeRef blob, CFTypeRef ps);

}  // extern "C"
