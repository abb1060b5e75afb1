// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "sampling/process_source.hpp"

namespace tarn {

/// One process of a fake machine. What is absent is refused to whoever asks.
struct FakeProcess {
  std::int32_t pid = 0;
  std::string path;
  std::optional<BsdInfo> info = BsdInfo{.ppid = 1, .uid = 501, .startSec = 1000};
  std::optional<ProcessUsage> usage = ProcessUsage{};
  std::string systemName;
};

/// A scripted machine. It belongs to the test and outlives the port over it; between two sweeps the test
/// changes it as it likes.
struct FakeMachine {
  std::vector<FakeProcess> processes;  ///< in the order in which they are listed
  double uptime = 1000;                ///< seconds
  double timePerSweep = 0.25;          ///< by how much the uptime grows after each look at it
  SystemMemory memory;
  std::map<std::string, InformationDictionary> bundles;  ///< by root
  std::vector<std::string> calls;                        ///< what was asked for, in order

  FakeProcess& process(std::int32_t pid) {
    return *std::find_if(processes.begin(), processes.end(), [pid](const auto& p) { return p.pid == pid; });
  }

  void end(std::int32_t pid) {
    std::erase_if(processes, [pid](const FakeProcess& process) { return process.pid == pid; });
  }

  std::int64_t callsOf(const std::string& call) const { return std::count(calls.begin(), calls.end(), call); }
};

class FakeProcScan final : public ProcScan {
 public:
  explicit FakeProcScan(FakeMachine& machine) : machine_(machine) {}

  std::vector<std::int32_t> allPIDs() override {
    machine_.calls.emplace_back("allPIDs");
    std::vector<std::int32_t> pids;
    for (const FakeProcess& process : machine_.processes) pids.push_back(process.pid);
    return pids;
  }
  std::optional<BsdInfo> bsdInfo(std::int32_t pid) override { return asked("bsdInfo", pid).info; }
  std::string path(std::int32_t pid) override { return asked("path", pid).path; }
  std::optional<ProcessUsage> usage(std::int32_t pid) override { return asked("usage", pid).usage; }
  SharedText processName(std::int32_t pid) override { return asked("processName", pid).systemName; }

 private:
  const FakeProcess& asked(const std::string& query, std::int32_t pid) {
    machine_.calls.push_back(query + ' ' + std::to_string(pid));
    return machine_.process(pid);
  }

  FakeMachine& machine_;
};

class FakeMemoryReader final : public SystemMemoryReader {
 public:
  explicit FakeMemoryReader(FakeMachine& machine) : machine_(machine) {}
  std::uint64_t totalRAM() override { return machine_.memory.totalRAM; }
  std::uint64_t swapUsed() override { return machine_.memory.swapUsed; }
  SystemMemory read() override {
    machine_.calls.emplace_back("memory");
    return machine_.memory;
  }

 private:
  FakeMachine& machine_;
};

inline SamplerPort samplerPortOf(FakeMachine& machine) {
  SamplerPort port;
  port.processes = std::make_unique<FakeProcScan>(machine);
  port.memory = std::make_unique<FakeMemoryReader>(machine);
  port.uptime = [&machine] {
    machine.calls.emplace_back("uptime");
    return std::exchange(machine.uptime, machine.uptime + machine.timePerSweep);
  };
  port.bundleInformation = [&machine](const std::string& root) -> InformationDictionary {
    machine.calls.push_back("bundle " + root);
    const auto bundle = machine.bundles.find(root);
    return bundle == machine.bundles.end() ? InformationDictionary{} : bundle->second;
  };
  return port;
}

}  // namespace tarn
