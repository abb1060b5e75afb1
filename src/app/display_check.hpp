// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>
#include <optional>

namespace tarn {

/// What keeps windows from being shown, in words for the person who started the program; nothing when a
/// display can be reached. To be asked before the application object is made, since the toolkit ends the
/// program where there is no display. Each platform folder defines it.
std::optional<QString> platformDisplayProblem();

}  // namespace tarn
