// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/x11/x11_frontmost.hpp"

#include <chrono>
#include <utility>

namespace tarn {
namespace {

constexpr auto patience = std::chrono::milliseconds(50);

}  // namespace

FrontmostApplicationSource x11FrontmostApplication(std::shared_ptr<X11Session> session) {
  return [session = std::move(session)]() -> std::optional<FrontmostApplication> {
    const auto owner = session->activeProcess(X11Session::Clock::now() + patience);
    if (!owner) return std::nullopt;
    return FrontmostApplication{std::nullopt, *owner};
  };
}

}  // namespace tarn
