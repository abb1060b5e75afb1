// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT
//
// burn_core: keeps one core busy until it is killed.

#include <atomic>

int main() {
  std::atomic<unsigned> counter = 0;
  while (true) ++counter;
}
