// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

namespace tarn {

/// Seconds since the system started, without the time it slept; 0 when the clock cannot be read.
double uptimeSeconds();

}  // namespace tarn
