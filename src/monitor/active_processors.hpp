// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

namespace tarn {

/// Number of processor cores currently online, whatever subset of them this process may use; at least 1.
/// Each platform folder defines it. Any thread.
int platformActiveProcessorCount();

}  // namespace tarn
