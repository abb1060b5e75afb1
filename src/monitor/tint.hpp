// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

namespace tarn {

/// The colours that carry meaning; which shade stands for each is the interface's business.
enum class Tint { green, orange, red, secondary };

}  // namespace tarn
