// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <AppKit/AppKit.h>

// expected: undeclared selector 'clickt:'
void connect(NSButton* button) {
  button.action = @selector(clickt:);
}
