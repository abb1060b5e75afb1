// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

namespace tarn {

/// Adds what Qt's accessibility lacks: rows that expand, links, and the popover's window, which Qt leaves out
/// of the application's children because it is a popup. Call once, after QApplication is constructed.
void installAccessibility();

}  // namespace tarn
