// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Macro and functions for fuzz targets. Each NAME_fuzz.cpp defines one target with FUZZ_TARGET. A fuzz build
// (TARN_FUZZ) links each target with fuzzer_main.cpp and libFuzzer into a separate program. Other builds link
// all targets with replay_main.cpp into one program, which runs them over their corpora.

#pragma once

#include <cstdlib>
#include <string_view>
#include <vector>

namespace tarn {

struct FuzzTarget {
  const char* name;
  void (*run)(std::string_view input);
};

/// The targets that are linked into this program.
inline std::vector<FuzzTarget>& fuzzTargets() {
  static std::vector<FuzzTarget> targets;
  return targets;
}

struct FuzzTargetRegistration {
  FuzzTargetRegistration(const char* name, void (*run)(std::string_view input)) {
    fuzzTargets().push_back({name, run});
  }
};

/// Aborts the program if a property of the parser does not hold.
inline void require(bool condition) {
  if (!condition) std::abort();
}

/// Whether `part` is a view into `whole`. True for an empty view.
inline bool isWithin(std::string_view part, std::string_view whole) {
  return part.empty() ||
         (part.data() >= whole.data() && part.data() + part.size() <= whole.data() + whole.size());
}

}  // namespace tarn

/// Begins the definition of this file's target: FUZZ_TARGET(process_stat, input) { parse(input); }
#define FUZZ_TARGET(name, input)                                                          \
  static void runFuzzTarget(std::string_view input);                                      \
  static const tarn::FuzzTargetRegistration fuzzTargetRegistration(#name, runFuzzTarget); \
  static void runFuzzTarget(std::string_view input)
