// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstring>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/macos/readers/kernel.hpp"

namespace tarn::macos {

/// The values that the kernel's functions return. The functions are plain function pointers, so only one
/// FakeKernel may exist at a time.
struct FakeKernel {
  FakeKernel() { current = this; }
  FakeKernel(const FakeKernel&) = delete;
  FakeKernel& operator=(const FakeKernel&) = delete;
  ~FakeKernel() { current = nullptr; }

  std::map<std::string, std::vector<std::uint8_t>> values;  ///< of sysctl, by name
  std::optional<MemoryRecord> memory;                       ///< absent: the call fails
  std::uint64_t pageSize = 16384;
  Timebase timebase = {125, 3};
  std::vector<std::int32_t> pids;
  std::optional<int> listSize;    ///< result of the call that asks for the size; absent: the size of `pids`
  std::optional<int> listFilled;  ///< result of the second call; absent: the bytes that it wrote
  std::optional<ProcessRecord> process;
  int processSize = sizeof(ProcessRecord);
  std::optional<UsageRecord> usage;
  std::string path;  ///< as the kernel writes it, with its zeros
  std::optional<int> pathLength;

  std::vector<std::string> calls;

  template <typename Value>
  void set(const std::string& name, const Value& value) {
    values[name].resize(sizeof value);
    std::memcpy(values[name].data(), &value, sizeof value);
  }

  KernelFunctions functions() const {
    return {.sysctlByName = sysctlByName,
            .hostStatistics = hostStatistics,
            .pageSize = pageSize,
            .timebaseInfo = timebaseInfo,
            .listPIDs = listPIDs,
            .pidUsage = pidUsage,
            .pidPath = pidPath,
            .pidInfo = pidInfo};
  }

 private:
  inline static FakeKernel* current = nullptr;

  static int sysctlByName(const char* name, void* value, std::size_t* size, void* newValue,
                          std::size_t newSize) {
    current->calls.push_back(std::string(name) + ' ' + std::to_string(*size));
    const auto entry = current->values.find(name);
    if (entry == current->values.end() || newValue != nullptr || newSize != 0) return -1;
    if (entry->second.size() > *size) return -1;
    *size = entry->second.size();
    std::memcpy(value, entry->second.data(), *size);
    return 0;
  }

  static int hostStatistics(int flavor, void* record, std::uint32_t* wordCount) {
    current->calls.push_back("statistics " + std::to_string(flavor) + ' ' + std::to_string(*wordCount));
    if (!current->memory) {
      std::memset(record, 0xFF, sizeof(MemoryRecord));
      return 5;  // KERN_FAILURE
    }
    std::memcpy(record, &*current->memory, sizeof(MemoryRecord));
    return 0;
  }

  static int timebaseInfo(Timebase* timebase) {
    current->calls.emplace_back("timebase");
    *timebase = current->timebase;
    return 0;
  }

  static int listPIDs(std::uint32_t type, std::uint32_t argument, void* buffer, int size) {
    current->calls.push_back("list " + std::to_string(type) + ' ' + std::to_string(argument) + ' ' +
                             std::to_string(size));
    const int listed = static_cast<int>(current->pids.size() * sizeof(std::int32_t));
    if (buffer == nullptr) return current->listSize.value_or(listed);
    const int filled = std::min(size, listed);
    if (current->listFilled) return *current->listFilled;
    if (filled > 0) std::memcpy(buffer, current->pids.data(), static_cast<std::size_t>(filled));
    return filled;
  }

  static int pidUsage(int pid, int flavor, void* record) {
    current->calls.push_back("usage " + std::to_string(pid) + ' ' + std::to_string(flavor));
    if (!current->usage) return -1;
    std::memcpy(record, &*current->usage, sizeof(UsageRecord));
    return 0;
  }

  static int pidPath(int pid, void* buffer, std::uint32_t size) {
    current->calls.push_back("path " + std::to_string(pid) + ' ' + std::to_string(size));
    current->path.copy(static_cast<char*>(buffer), size);
    return current->pathLength.value_or(static_cast<int>(current->path.size()));
  }

  static int pidInfo(int pid, int flavor, std::uint64_t argument, void* record, int size) {
    current->calls.push_back("info " + std::to_string(pid) + ' ' + std::to_string(flavor) + ' ' +
                             std::to_string(argument) + ' ' + std::to_string(size));
    if (!current->process) return 0;
    std::memcpy(record, &*current->process, sizeof(ProcessRecord));
    return current->processSize;
  }
};

}  // namespace tarn::macos
