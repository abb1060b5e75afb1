// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// replay_corpora DIRECTORY [NAME...]: runs all fuzz targets, or the named targets, over every file of
// DIRECTORY/NAME. Inputs that once crashed a parser stay in its corpus and are tested again. Fails if a
// target has no input.

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <span>
#include <string>
#include <vector>

#include "fuzz/fuzz_target.hpp"

namespace {

/// Returns the number of inputs.
int replay(const tarn::FuzzTarget& target, const std::filesystem::path& corpus) {
  int inputs = 0;
  for (const auto& entry : std::filesystem::directory_iterator(corpus)) {
    std::ifstream file(entry.path(), std::ios::binary);
    // A vector of the exact size: address sanitizer reports a read past its end.
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    std::printf("%s/%s\n", target.name, entry.path().filename().c_str());
    std::fflush(stdout);
    target.run({bytes.data(), bytes.size()});
    ++inputs;
  }
  return inputs;
}

}  // namespace

int main(int argumentCount, char** arguments) {
  if (argumentCount < 2) return 2;
  const std::filesystem::path corpora = arguments[1];
  const std::span<char*> names(arguments + 2, arguments + argumentCount);
  std::size_t replayed = 0;
  for (const tarn::FuzzTarget& target : tarn::fuzzTargets()) {
    const auto hasName = [&target](const char* name) { return std::string_view(name) == target.name; };
    if (!names.empty() && std::none_of(names.begin(), names.end(), hasName)) continue;
    if (replay(target, corpora / target.name) == 0) return 1;
    ++replayed;
  }
  // Fails also when no target has one of the names.
  return replayed == (names.empty() ? tarn::fuzzTargets().size() : names.size()) ? 0 : 1;
}
