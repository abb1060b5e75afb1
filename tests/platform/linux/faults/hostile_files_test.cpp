// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Replaces each file of the machine fixture by a pipe, a directory, invalid text or another fault. Reading
// the machine must not block, must allocate little memory, and must report no value for what could not be
// read.

#include <fcntl.h>
#include <gmock/gmock.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <future>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "extras/extras_reader.hpp"
#include "platform/linux/app_identity/application_information.hpp"
#include "platform/linux/faults/machine_fixture.hpp"
#include "platform/linux/procfs/file_reading.hpp"
#include "platform/linux/procfs/proc_pid_files.hpp"
#include "platform/linux/psi/psi_file.hpp"
#include "platform/linux/psi/psi_pressure_source.hpp"
#include "platform/linux/sysfs/linux_extras_port.hpp"
#include "sampling/memory_sampler.hpp"
#include "support/allocation_count.hpp"

namespace tarn {
namespace {

namespace fs = std::filesystem;

/// What replaces a file.
enum class Fault {
  pipe,
  pipeWithSilentWriter,
  directory,
  danglingLink,
  loopingLink,
  endlessDevice,
  longLine,
  empty,
  zeros,
  garbage
};

std::ostream& operator<<(std::ostream& stream, Fault fault) {
  constexpr const char* names[] = {"pipe",        "pipeWithSilentWriter",
                                   "directory",   "danglingLink",
                                   "loopingLink", "endlessDevice",
                                   "longLine",    "empty",
                                   "zeros",       "garbage"};
  return stream << names[static_cast<int>(fault)];
}

std::string garbage() {
  std::mt19937 random(1);
  std::string text(20'000, '\0');
  for (char& character : text) character = static_cast<char>(random());
  return text;
}

/// Replaces a file. For a pipe with a silent writer, returns the writing end, which the caller keeps open.
FileDescriptor replaceFile(Fault fault, const TemporaryTree& tree, const std::string& path) {
  tree.remove(path);
  switch (fault) {
    case Fault::pipe:
      tree.pipe(path);
      break;
    case Fault::pipeWithSilentWriter:
      tree.pipe(path);
      return FileDescriptor(::open(tree.at(path).c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
    case Fault::directory:
      fs::create_directories(tree.at(path) / "within");
      break;
    case Fault::danglingLink:
      tree.link(path, "nothing-of-this-name");
      break;
    case Fault::loopingLink:
      tree.link(path, fs::path(path).filename());
      break;
    case Fault::endlessDevice:
      tree.link(path, "/dev/zero");
      break;
    case Fault::longLine:
      tree.write(path, std::string(1 << 20, '7'));
      break;
    case Fault::empty:
      tree.write(path, "");
      break;
    case Fault::zeros:
      tree.write(path, std::string(5000, '\0'));
      break;
    case Fault::garbage:
      tree.write(path, garbage());
      break;
  }
  return {};
}

/// Everything that Tarn reads of a machine.
struct Reading {
  std::map<std::int32_t, std::uint64_t> footprints;
  std::map<std::int32_t, std::string> groups;
  SystemMemory memory;
  bool hasStalls = false;
  bool hasAvailability = false;
  SystemExtras extras;
  ThermalState thermalState = ThermalState::unknown;
  std::optional<std::int32_t> declared;
  InformationDictionary bundle;
  std::size_t iconFiles = 0;

  bool operator==(const Reading&) const = default;
};

Reading readMachine(const LinuxRoots& roots) {
  Reading reading;
  MemorySampler sampler(makeMachineFixturePort(
      roots, [](std::int32_t) { return std::optional<std::uint64_t>(1); }, [] { return 1.0; }));
  for (int sweep = 0; sweep < 2; ++sweep) {
    const MemorySnapshot snapshot = sampler.sample();
    for (const AppGroup& group : snapshot.groups) {
      for (const ProcessSample& process : group.processes) {
        reading.footprints[process.pid] = process.footprint;
        reading.groups[process.pid] = group.id;
      }
    }
    reading.memory = snapshot.system;
  }
  reading.hasStalls = readMemoryPsi(roots).has_value();
  reading.hasAvailability = readPressureLevel(roots).has_value();
  const ExtrasReader reader(linuxExtrasPort(roots));
  reading.extras = reader.read();
  reading.extras.uptime = 0;
  if (reading.extras.storage) reading.extras.storage->available = 0;  // other programs can change it
  reading.thermalState = reader.thermalState();
  EXPECT_GT(countCoresOnline(roots), 0);
  reading.declared =
      resolveNamespacedPid(roots.proc, 7, 1000, std::chrono::steady_clock::now() + std::chrono::seconds(20));
  reading.bundle = applicationInformation(roots, "/opt/Text.app");
  reading.iconFiles = bundleIconFiles(roots.root + "/opt/Text.app").size();
  return reading;
}

/// Like `readMachine`, but ends the test program if it takes more than half a minute.
Reading readWithTimeout(const LinuxRoots& roots, const std::string& what) {
  auto reading = std::async(std::launch::async, [&roots] { return readMachine(roots); });
  if (reading.wait_for(std::chrono::seconds(30)) != std::future_status::ready) {
    std::printf("reading blocks on %s\n", what.c_str());
    std::fflush(stdout);
    std::_Exit(1);
  }
  return reading.get();
}

class HostileFiles : public testing::TestWithParam<Fault> {
 protected:
  HostileFiles() {
    writeMachineFixture(tree_);
    tree_.write("opt/Text.app/Resources/Info-gnustep.plist",
                "{ ApplicationName = Text; NSIcon = \"Text.tiff\"; }\n");
    tree_.write("proc/44/status", "Uid:\t1000\t1\t1\t1\nNSpid:\t44\t7\nVmSize:\t 5 kB\n");
    expected_ = readWithTimeout(tree_.roots(), "nothing");
  }

  /// The machine's files, with only the first of the memory blocks in sysfs, which have equal files.
  std::vector<std::string> files() const {
    std::vector<std::string> files;
    const fs::path root = tree_.at("");
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
      const std::string path = fs::relative(entry.path().parent_path(), root) / entry.path().filename();
      const bool isOtherMemoryBlock = path.find("devices/system/memory/memory") != std::string::npos &&
                                      path.find("/memory0/") == std::string::npos;
      if ((entry.is_symlink() || !entry.is_directory()) && !isOtherMemoryBlock) files.push_back(path);
    }
    return files;
  }

  /// Expects that values from other files than `path` are the same as without the fault.
  void expectOtherValues(const Reading& reading, const std::string& path) const {
    const bool isInProc = path.starts_with("proc/");
    const bool affectsMemory =
        isInProc || path.starts_with("sys/block") || path.starts_with("sys/devices/system/memory");
    const bool affectsApplications = isInProc || path.starts_with("usr/") || path.starts_with("opt/");
    for (const auto& [pid, footprint] : expected_.footprints) {
      if (path.starts_with("proc/" + std::to_string(pid) + "/")) continue;
      ASSERT_TRUE(reading.footprints.contains(pid)) << pid;
      // Without /proc/swaps the swapped memory of a process is not read.
      const std::uint64_t swapped = path == "proc/swaps" ? std::uint64_t{40} << 10U : 0;
      EXPECT_NEAR(static_cast<double>(reading.footprints.at(pid)), static_cast<double>(footprint),
                  static_cast<double>(swapped))
          << pid;
    }
    if (!affectsMemory) {
      EXPECT_EQ(reading.memory, expected_.memory);
    }
    if (!affectsApplications) {
      EXPECT_EQ(reading.groups, expected_.groups);
    }
    if (isInProc && !path.starts_with("proc/self/")) {
      EXPECT_EQ(reading.extras, expected_.extras);
      EXPECT_EQ(reading.thermalState, expected_.thermalState);
    }
    const std::int64_t percent = reading.extras.battery ? reading.extras.battery->percent : 0;
    EXPECT_TRUE(percent >= 0 && percent <= 100) << percent;
    const double celsius = reading.extras.temperatureCelsius.value_or(40);
    EXPECT_TRUE(celsius > 30 && celsius < 60) << celsius;
  }

  TemporaryTree tree_;
  Reading expected_;
};

/// The content of a file, or the target of a symbolic link.
struct SavedFile {
  explicit SavedFile(const fs::path& path) : isLink(fs::is_symlink(path)) {
    if (isLink) {
      text = fs::read_symlink(path);
    } else {
      std::ostringstream content;
      content << std::ifstream(path).rdbuf();
      text = content.str();
    }
  }
  void restore(const TemporaryTree& tree, const std::string& path) const {
    tree.remove(path);
    if (isLink) {
      tree.link(path, text);
    } else {
      tree.write(path, text);
    }
  }

  bool isLink;
  std::string text;
};

TEST_P(HostileFiles, AffectNoOtherValues) {
  ASSERT_EQ(expected_.footprints.size(), 4U);
  ASSERT_TRUE(expected_.hasStalls && expected_.hasAvailability && expected_.declared == 44 &&
              expected_.iconFiles == 1U);
  ASSERT_TRUE(expected_.extras.battery && expected_.extras.temperatureCelsius &&
              expected_.memory.totalRAM > 0);
  const std::vector<std::string> all = files();
  ASSERT_GT(all.size(), 60U);
  for (const std::string& path : all) {
    SCOPED_TRACE(path);
    const SavedFile saved(tree_.at(path));
    const FileDescriptor writer = replaceFile(GetParam(), tree_, path);
    const std::size_t before = allocatedBytes();
    const Reading reading = readWithTimeout(tree_.roots(), path);
    // Files are read into a buffer that doubles; the largest file is read twice.
    EXPECT_LT(allocatedBytes() - before, std::size_t{12} << 20U);
    saved.restore(tree_, path);

    expectOtherValues(reading, path);
  }
}

TEST_P(HostileFiles, ReadLikeAnEmptyMachineWhenAllFilesAreFaulty) {
  std::vector<FileDescriptor> writers;
  for (const std::string& path : files()) writers.push_back(replaceFile(GetParam(), tree_, path));
  tree_.remove("sys/devices/system/memory");
  const std::size_t before = allocatedBytes();
  const Reading reading = readWithTimeout(tree_.roots(), "all");
  EXPECT_LT(allocatedBytes() - before, std::size_t{64} << 20U);
  EXPECT_EQ(reading, readWithTimeout(TemporaryTree().roots(), "an empty machine"));
  EXPECT_EQ(reading.memory, SystemMemory());
}

INSTANTIATE_TEST_SUITE_P(All, HostileFiles,
                         testing::Values(Fault::pipe, Fault::pipeWithSilentWriter, Fault::directory,
                                         Fault::danglingLink, Fault::loopingLink, Fault::endlessDevice,
                                         Fault::longLine, Fault::empty, Fault::zeros, Fault::garbage),
                         testing::PrintToStringParamName());

}  // namespace
}  // namespace tarn
