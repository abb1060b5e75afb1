// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QIcon>

#include "platform/macos/desktop/workspace.hpp"

namespace tarn::macos {

/// An icon of these pictures, by their scale from 1 on; empty ones are passed over.
QIcon iconOf(const std::vector<Pixels>& picturesByScale);

}  // namespace tarn::macos
