// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <map>
#include <string>
#include <string_view>

namespace tarn {

/// The text entries of a dictionary in the property lists that GNUstep writes: { Key = "text"; }. Entries of
/// other kinds are passed over. What stands before the first mistake is kept.
std::map<std::string, std::string, std::less<>> parsePropertyTexts(std::string_view text);

}  // namespace tarn
