// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <functional>
#include <memory>

namespace tarn {

/// Keeps one Tarn per session: the second one asks the first to open its popover, and ends. Main thread.
class SingleInstance {
 public:
  virtual ~SingleInstance() = default;

  /// Whether this is the session's first Tarn, as far as can be known: without a session bus every one is.
  /// Where it is not, the first one has been asked to open its popover when this returns. From then on
  /// `launchedAgain` is called whenever another launch asks this one. Called once, at the start.
  virtual bool claim(std::function<void()> launchedAgain) = 0;
};

/// The running session's; each platform folder defines it.
std::unique_ptr<SingleInstance> platformSingleInstance();

}  // namespace tarn
