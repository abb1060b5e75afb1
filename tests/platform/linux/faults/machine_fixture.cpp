// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/faults/machine_fixture.hpp"

#include <chrono>
#include <string>
#include <utility>

#include "platform/linux/app_identity/linux_sampler_port.hpp"
#include "platform/linux/sysfs/machine_tree.hpp"

namespace tarn {

namespace {

void writeMemory(const TemporaryTree& tree) {
  tree.write("proc/meminfo",
             "MemTotal: 8000000 kB\nMemFree: 3000000 kB\nMemAvailable: 5000000 kB\nBuffers: 100000 kB\n"
             "Cached: 2000000 kB\nSwapCached: 0 kB\nAnonPages: 1500000 kB\nShmem: 50000 kB\n"
             "SReclaimable: 200000 kB\nSwapTotal: 1000000 kB\nSwapFree: 900000 kB\nZswap: 300 kB\n"
             "Zswapped: 1000 kB\nMlocked: 10 kB\n");
  tree.write("proc/swaps", "Filename\tType\tSize\tUsed\tPriority\n/dev/sda3 partition 1000000 100000 -2\n");
  tree.write("proc/pressure/memory",
             "some avg10=1.00 avg60=0.00 avg300=0.00 total=7000\nfull avg10=0.50 avg60=0.00 avg300=0.00 "
             "total=3000\n");
  tree.write("sys/block/zram0/mm_stat", "4096 2048 8192 0 8192 0 0 0 0\n");
  tree.write("sys/devices/system/memory/block_size_bytes", "8000000\n");
  for (int block = 0; block < 64; ++block) {
    tree.write("sys/devices/system/memory/memory" + std::to_string(block) + "/online", "1\n");
  }
  tree.write("sys/devices/system/cpu/online", "0-3\n");
}

void writeProcesses(const TemporaryTree& tree) {
  // A machine whose clock has no battery: the first processes start in second 0 of the epoch.
  tree.write("proc/stat", "cpu 1 2 3\nbtime 0\nprocesses 9\n");
  ProcessFixture{
      .pid = 2, .name = "kthreadd_of_a_long_name", .ppid = "0", .startTicks = 5, .flags = 0x00200040}
      .writeTo(tree);
  const struct {
    std::int32_t pid;
    const char* name;
    const char* executable;
    const char* statm;
  } processes[] = {
      {40, "paint", "/opt/paint/paint", "5000 300 100 5 0 123 0\n"},
      {41, "helper", "/opt/paint/helper", "5000 400 100 5 0 123 0\n"},
      {42, "a-program-of-a-lo", "/usr/bin/a-program-of-a-long-name", "5000 500 100 5 0 123 0\n"}};
  for (const auto& [pid, name, executable, statm] : processes) {
    ProcessFixture process{.pid = pid, .name = name, .statm = statm, .commandLine = std::string(executable)};
    process.swapLine = "VmSwap:\t      40 kB\n";
    process.writeTo(tree);
    tree.link("proc/" + std::to_string(pid) + "/exe", executable);
    tree.write("proc/" + std::to_string(pid) + "/cgroup", "0::/user.slice/app-42.scope\n");
  }
}

void writeApplications(const TemporaryTree& tree) {
  tree.write("opt/paint/paint", "");
  tree.write("opt/paint/helper", "");
  tree.write("usr/bin/edit-service", "");
  tree.write("usr/share/applications/org.example.Paint.desktop",
             "[Desktop Entry]\nType=Application\nName=Paint\nExec=/opt/paint/paint %U\n");
  tree.write("usr/share/applications/org.example.Edit.desktop",
             "[Desktop Entry]\nType=Application\nName=Edit\nExec=edit\n");
  tree.write("usr/share/dbus-1/services/org.example.Edit.service",
             "[D-BUS Service]\nName=org.example.Edit\nExec=/usr/bin/edit-service\n");
}

}  // namespace

void writeMachineFixture(const TemporaryTree& tree) {
  writeMachine(tree, "laptop-energy");
  tree.write("sys/devices/system/cpu/cpu0/thermal_throttle/package_throttle_count", "3\n");
  tree.write("sys/devices/system/cpu/cpu0/topology/physical_package_id", "0\n");
  tree.write("etc/os-release", "NAME=\"An operating system of a long name\"\n");
  writeVolumeRecord(tree, "E:ID_FS_LABEL_ENC=A\\x20label\\x20of\\x20some\\x20length\n");
  writeMemory(tree);
  writeProcesses(tree);
  writeApplications(tree);
}

SamplerPort makeMachineFixturePort(const LinuxRoots& roots, ProcessClock clock,
                                   std::function<double()> uptime) {
  const auto environment = [](const char* variable) -> std::string {
    const std::string_view name = variable;
    if (name == "XDG_DATA_DIRS") return "/usr/share:/usr/local/share";
    if (name == "PATH") return "/usr/bin";
    return {};
  };
  SamplerClocks clocks;
  clocks.processes = std::move(clock);
  clocks.uptime = std::move(uptime);
  clocks.applications = [now = std::chrono::steady_clock::time_point()]() mutable {
    return now += std::chrono::minutes(1);
  };
  return makeLinuxSamplerPort(roots, environment, std::move(clocks));
}

}  // namespace tarn
