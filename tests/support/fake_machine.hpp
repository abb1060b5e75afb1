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

/// One process of a fake machine. Absent values are reported as unavailable.
struct FakeProcess {
  std::int32_t pid = 0;
  std::string path;
  std::optional<BsdInfo> info = BsdInfo{.ppid = 1, .uid = 501, .startSec = 1000};
  std::optional<ProcessUsage> usage = ProcessUsage{};
  std::string systemName;
};

/// Values that a fake SamplerPort returns. Owned by the test, which may change it between sweeps; must
/// outlive the port.
struct FakeMachine {
  std::vector<FakeProcess> processes;  ///< in the order of allPIDs
  double uptime = 1000;                ///< seconds
  double timePerSweep = 0.25;          ///< seconds; added to `uptime` after each call of it
  SystemMemory memory;
  std::map<std::string, InformationDictionary> bundles;  ///< by bundle root
  std::vector<std::string> calls;                        ///< calls of the port, in order

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
  std::optional<BsdInfo> bsdInfo(std::int32_t pid) override { return recorded("bsdInfo", pid).info; }
  std::string path(std::int32_t pid) override { return recorded("path", pid).path; }
  std::optional<ProcessUsage> usage(std::int32_t pid) override { return recorded("usage", pid).usage; }
  SharedText processName(std::int32_t pid) override { return recorded("processName", pid).systemName; }

 private:
  const FakeProcess& recorded(const std::string& function, std::int32_t pid) {
    machine_.calls.push_back(function + ' ' + std::to_string(pid));
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
