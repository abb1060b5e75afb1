// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include "app/platform.hpp"

namespace tarn {

/// Runs Tarn until it quits and returns the exit status for main(). The main() of each platform calls it
/// once, on the main thread. `platform` must outlive the call.
int runTarn(int argc, char* argv[], Platform& platform);

}  // namespace tarn
