// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>
#include <optional>

namespace tarn {

/// Why neither an X11 nor a Wayland display can be reached, as a clause without a full stop; nullopt when one
/// can, or when QT_QPA_PLATFORM selects a platform that needs neither. Used before QApplication exists.
std::optional<QString> findDisplayProblem();

}  // namespace tarn
