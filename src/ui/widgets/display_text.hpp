// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>
#include <string_view>

namespace tarn {

/// Text from outside (UTF-8, perhaps broken) as it may be shown: one line, without control characters or
/// characters that reorder what stands beside them, and of bounded length.
QString displayText(std::string_view utf8);

}  // namespace tarn
