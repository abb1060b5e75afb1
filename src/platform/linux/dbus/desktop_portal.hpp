// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Where the desktop portal is on the session bus: it does for programs what they may not do themselves.

#pragma once

#include <QLatin1String>

namespace tarn {

inline constexpr QLatin1String portalName("org.freedesktop.portal.Desktop");
inline constexpr QLatin1String portalPath("/org/freedesktop/portal/desktop");

}  // namespace tarn
