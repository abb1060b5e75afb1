// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <memory>
#include <optional>

#include "monitor/presentation.hpp"
#include "platform/linux/x11/x11_session.hpp"

namespace tarn {

/// The application of the active window of `session`, asked in at most 50 ms; the session is kept.
FrontmostApplicationSource x11FrontmostApplication(std::shared_ptr<X11Session> session);

}  // namespace tarn
