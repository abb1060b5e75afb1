// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

namespace tarn {

/// Teaches assistive technology what the toolkit does not know of: rows that open, links, and the popover
/// itself, which the toolkit keeps from it because it is a popup. Call once, after the application object was
/// made.
void installAccessibility();

}  // namespace tarn
