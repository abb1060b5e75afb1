// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <memory>

#include "app/platform.hpp"

namespace tarn {

/// Queries the window system; on X11 this takes two blocking round trips. After QApplication exists. Main
/// thread.
WindowSystemState queryWindowSystem();

/// Null where clients place windows, or where no known compositor runs. After QApplication exists.
std::unique_ptr<CompositorPlacement> runningCompositorPlacement();

}  // namespace tarn
