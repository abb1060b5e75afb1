// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <functional>
#include <string>
#include <vector>

namespace tarn {

/// Looks an environment variable up; empty when it is not set.
using Environment = std::function<std::string(const char* variable)>;

/// The directories that hold shared data such as desktop files, those that win first: the user's, the
/// system's, and what sandboxes export to.
std::vector<std::string> dataDirectories(const Environment& environment);

/// The directories in which programs are looked for that are named without one, in their order.
std::vector<std::string> programDirectories(const Environment& environment);

}  // namespace tarn
