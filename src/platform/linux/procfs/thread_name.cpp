// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "monitor/thread_name.hpp"

#include <sys/prctl.h>

namespace tarn {

// The kernel keeps the first 15 bytes.
void setCurrentThreadName(const std::string& name) {
  prctl(PR_SET_NAME, name.c_str());
}

}  // namespace tarn
