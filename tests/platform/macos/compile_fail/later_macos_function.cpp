// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <charconv>

// expected: is unavailable: introduced in macOS
void write(char* begin, char* end, double value) {
  std::to_chars(begin, end, value);
}
