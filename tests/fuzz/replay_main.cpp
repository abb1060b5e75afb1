// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Runs a fuzzer's one function over every file of the folders that are named: what was once found stays
// found.

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "fuzz/fuzz_target.hpp"

int main(int argumentCount, char** arguments) {
  int replayed = 0;
  for (int i = 1; i < argumentCount; ++i) {
    for (const auto& entry : std::filesystem::directory_iterator(arguments[i])) {
      std::ifstream file(entry.path(), std::ios::binary);
      const std::vector<char> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
      std::printf("%s\n", entry.path().filename().c_str());
      std::fflush(stdout);
      LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
      ++replayed;
    }
  }
  std::printf("%d inputs\n", replayed);
  return replayed > 0 ? 0 : 1;
}
