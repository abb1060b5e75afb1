// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <optional>

#include "platform/macos/readers/system_functions.hpp"
#include "sampling/process_source.hpp"

namespace tarn::macos {

/// The machine's memory figures; each is 0 when its call fails, independently of the others.
class MacSystemMemoryReader final : public SystemMemoryReader {
 public:
  explicit MacSystemMemoryReader(const SystemFunctions& system) : system_(system) {}

  std::uint64_t totalRAM() override;
  std::uint64_t swapUsed() override;

  /// Bytes that exceed 64 bits stop the program.
  SystemMemory read() override;

 private:
  SystemFunctions system_;
};

/// The kernel's memory-pressure level as it numbers them; nothing when it cannot be read.
std::optional<std::int32_t> readPressureLevel(const SystemFunctions& system);

}  // namespace tarn::macos
