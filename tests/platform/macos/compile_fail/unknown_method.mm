// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <AppKit/AppKit.h>

// expected: no visible @interface for 'NSWorkspace' declares the selector 'iconFromFile:'
NSImage* icon() {
  return [NSWorkspace.sharedWorkspace iconFromFile:@"/"];
}
