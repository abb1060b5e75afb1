// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The entry point that libFuzzer calls with each input (https://llvm.org/docs/LibFuzzer.html). It runs the
// one target of this program.

#include <cstddef>
#include <cstdint>

#include "fuzz/fuzz_target.hpp"

// NOLINTNEXTLINE(readability-identifier-naming): libFuzzer looks for this name.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tarn::fuzzTargets().front().run({reinterpret_cast<const char*>(data), size});
  return 0;
}
