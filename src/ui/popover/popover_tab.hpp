// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

namespace tarn {

/// The popover's tabs, in the order in which they are shown.
enum class PopoverTab { memory, cpu, system };

}  // namespace tarn
