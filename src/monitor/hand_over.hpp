// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <chrono>
#include <new>
#include <thread>

#include "monitor/task_queue.hpp"

namespace tarn {

/// Hands work over to a queue; where there is no memory for that, waits until there is. What a thread found
/// out is told late then, rather than never. For threads that may wait, so not for the main one. The work
/// must bear to be run a second time, which happens when memory ran out in the middle.
template <typename Work>
void handOver(TaskQueue& queue, const Work& work) {
  constexpr auto pause = std::chrono::milliseconds(500);
  for (;;) {
    try {
      queue.async(work);
      return;
    } catch (const std::bad_alloc&) {
      std::this_thread::sleep_for(pause);
    }
  }
}

}  // namespace tarn
