// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include "ui/popover/popover_window.hpp"

namespace tarn {

/// Queries the window system; on X11 this takes blocking round trips. After QApplication exists. Main thread.
WindowSystem queryWindowSystem();

}  // namespace tarn
