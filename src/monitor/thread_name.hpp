// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>

namespace tarn {

/// Names the calling thread for tools that list threads; systems with a shorter limit show the beginning.
/// Each platform folder defines it.
void setCurrentThreadName(const std::string& name);

}  // namespace tarn
