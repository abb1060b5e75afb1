// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Fails each allocation of a sweep and of a reading of the extras, one per trial. Each sweep is complete or
// throws std::bad_alloc, and the next one is correct.

#include <gmock/gmock.h>

#include <functional>
#include <new>
#include <optional>
#include <vector>

#include "extras/extras_reader.hpp"
#include "platform/linux/faults/machine_fixture.hpp"
#include "platform/linux/psi/psi_pressure_source.hpp"
#include "platform/linux/sysfs/linux_extras_port.hpp"
#include "sampling/memory_sampler.hpp"
#include "sampling/pid_map.hpp"
#include "support/allocation_count.hpp"

namespace tarn {
namespace {

/// What a snapshot contains about one process.
struct SampledProcess {
  std::int32_t pid = 0;
  std::string group;
  std::string groupName;
  std::string name;
  std::uint64_t footprint = 0;

  bool operator==(const SampledProcess&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const SampledProcess& process) {
  return stream << process.pid << ' ' << process.group << ' ' << process.groupName << ' ' << process.name
                << ' ' << process.footprint;
}

std::vector<SampledProcess> processesOf(const MemorySnapshot& snapshot) {
  std::vector<SampledProcess> processes;
  for (const AppGroup& group : snapshot.groups) {
    for (const ProcessSample& process : group.processes) {
      processes.push_back(
          {process.pid, group.id, group.name.string(), process.name.string(), process.footprint});
    }
  }
  return processes;
}

/// A sampler of the machine fixture. Every process uses a quarter of a core until `stopCpuUse`.
class FixtureSampler {
 public:
  explicit FixtureSampler(const TemporaryTree& tree)
      : sampler_(makeMachineFixturePort(
            tree.roots(), [this](std::int32_t pid) { return clockOf(pid); },
            [this] { return time_ += 0.25; })) {}

  MemorySnapshot sample() {
    start_ = time_ += 3;
    return sampler_.sample();
  }

  /// From now on no process uses CPU time.
  void stopCpuUse() { idleSince_ = start_; }

 private:
  std::optional<std::uint64_t> clockOf(std::int32_t /*pid*/) const {
    return static_cast<std::uint64_t>(idleSince_.value_or(start_) * 250'000'000);
  }

  double time_ = 1000;
  double start_ = time_;  ///< of the latest sweep
  std::optional<double> idleSince_;
  MemorySampler sampler_;
};

enum class Outcome {
  complete,   ///< the work handled the failure
  thrown,     ///< std::bad_alloc
  notReached  ///< the work made fewer allocations
};

/// Runs `work` and fails its `number`-th allocation, and all after it if `isLasting`.
template <typename Work>
Outcome failAllocation(std::size_t number, bool isLasting, Work work) {
  const FailingAllocation failure(number, isLasting);
  try {
    work();
  } catch (const std::bad_alloc&) {
    return Outcome::thrown;
  }
  return failure.happened() ? Outcome::complete : Outcome::notReached;
}

/// Runs `trial` for allocation 1, 2, and so on, until a trial makes fewer allocations. Returns the number of
/// trials that threw.
std::size_t forEachAllocation(const std::function<Outcome(std::size_t)>& trial) {
  std::size_t thrown = 0;
  for (std::size_t number = 1;; ++number) {
    SCOPED_TRACE("allocation " + std::to_string(number));
    const Outcome outcome = trial(number);
    if (outcome == Outcome::notReached || testing::Test::HasFailure()) return thrown;
    if (outcome == Outcome::thrown) ++thrown;
  }
}

class OutOfMemory : public testing::TestWithParam<bool> {
 protected:
  OutOfMemory() { writeMachineFixture(tree_); }

  static void expectShares(const MemorySnapshot& snapshot, double share) {
    for (const AppGroup& group : snapshot.groups) {
      for (const ProcessSample& process : group.processes)
        EXPECT_NEAR(process.cpuPercent, share, 1e-6) << process.pid;
    }
  }

  TemporaryTree tree_;
};

TEST_P(OutOfMemory, TheFirstSweepIsCompleteOrThrowsAndTheNextIsCorrect) {
  const MemorySnapshot expected = FixtureSampler(tree_).sample();
  ASSERT_EQ(processesOf(expected).size(), 4U);
  const std::size_t thrown = forEachAllocation([&](std::size_t number) {
    FixtureSampler sampler(tree_);
    MemorySnapshot snapshot;
    const Outcome outcome = failAllocation(number, GetParam(), [&] { snapshot = sampler.sample(); });
    if (outcome == Outcome::thrown) snapshot = sampler.sample();
    EXPECT_EQ(processesOf(snapshot), processesOf(expected));
    EXPECT_EQ(snapshot.system, expected.system);
    expectShares(sampler.sample(), 25);
    return outcome;
  });
  EXPECT_GT(thrown, 50U);
}

TEST_P(OutOfMemory, ALaterSweepIsCompleteOrThrowsAndTheNextIsCorrect) {
  tree_.write("proc/swaps", "");  // without swap, idle processes are not read again
  const auto before = [this] {
    tree_.remove("proc/43");
    tree_.remove("usr/share/applications/more");
    ProcessFixture{.pid = 41, .name = "helper", .statm = "5000 400 100 5 0 123 0\n"}.writeTo(tree_);
    tree_.write("sys/devices/system/memory/memory64/online", "0\n");
    // Otherwise the directory's modification time may not change: file systems have coarse clocks.
    std::filesystem::last_write_time(tree_.at("usr/share/applications"),
                                     std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
  };
  // A process grows, another one starts, an application is installed, and a memory block goes online.
  const auto after = [this] {
    ProcessFixture{.pid = 41, .name = "helper", .statm = "5000 900 100 5 0 123 0\n"}.writeTo(tree_);
    ProcessFixture{.pid = 43, .name = "newcomer", .startTicks = 9000}.writeTo(tree_);
    tree_.link("proc/43/exe", "/usr/bin/viewer");
    tree_.write("usr/bin/viewer", "");
    tree_.write("usr/share/applications/more/viewer.desktop",
                "[Desktop Entry]\nType=Application\nName=Viewer\nExec=/usr/bin/viewer\n");
  };
  after();
  const MemorySnapshot expected = FixtureSampler(tree_).sample();
  ASSERT_EQ(processesOf(expected).size(), 5U);
  const std::size_t thrown = forEachAllocation([&](std::size_t number) {
    before();
    FixtureSampler sampler(tree_);
    sampler.sample();
    sampler.sample();
    after();
    MemorySnapshot snapshot;
    const Outcome outcome = failAllocation(number, GetParam(), [&] { snapshot = sampler.sample(); });
    // Processes that use no CPU time keep their cached data in the next sweep. That data must not come from
    // the failed sweep.
    sampler.stopCpuUse();
    if (outcome == Outcome::thrown) snapshot = sampler.sample();
    EXPECT_EQ(processesOf(snapshot), processesOf(expected));
    EXPECT_EQ(snapshot.system, expected.system);
    expectShares(sampler.sample(), 0);
    return outcome;
  });
  EXPECT_GT(thrown, 30U);
}

TEST_P(OutOfMemory, AReadingOfTheExtrasIsCompleteOrThrowsAndTheNextIsCorrect) {
  const auto read = [](const ExtrasReader& reader) {
    SystemExtras extras = reader.read();
    extras.uptime = 0;
    if (extras.storage) extras.storage->available = 0;  // other programs can change it
    return std::pair(extras, reader.thermalState());
  };
  const auto expected = read(ExtrasReader(linuxExtrasPort(tree_.roots())));
  ASSERT_TRUE(expected.first.battery && expected.first.temperatureCelsius && expected.first.storage);
  ASSERT_EQ(expected.first.storage->volumeName, "A label of some length");
  const std::size_t thrown = forEachAllocation([&](std::size_t number) {
    const ExtrasReader reader(linuxExtrasPort(tree_.roots()));
    auto extras = expected;
    const Outcome outcome = failAllocation(number, GetParam(), [&] { extras = read(reader); });
    if (outcome == Outcome::thrown) extras = read(reader);
    EXPECT_EQ(extras, expected);
    return outcome;
  });
  EXPECT_GT(thrown, 50U);
}

INSTANTIATE_TEST_SUITE_P(OnceAndLasting, OutOfMemory, testing::Bool());

TEST(OutOfMemory, AMapThatCannotGrowKeepsItsContent) {
  const std::size_t thrown = forEachAllocation([](std::size_t number) {
    PidMap<int> map;
    for (std::int32_t pid = 1; pid <= 8; ++pid) map[pid * 100] = pid;
    const Outcome outcome = failAllocation(number, false, [&map] { map[7] = 7; });
    for (std::int32_t pid = 1; pid <= 8; ++pid) {
      const int* const value = map.find(pid * 100);
      EXPECT_TRUE(value != nullptr && *value == pid) << pid;
    }
    EXPECT_EQ(map.contains(7), outcome != Outcome::thrown);
    return outcome;
  });
  EXPECT_EQ(thrown, 2U);
}

/// Three PSI events. All allocations after the second one fail until the third.
class OutOfMemoryTriggers final : public PsiTriggers {
 public:
  explicit OutOfMemoryTriggers(std::function<void(int)> atWait) : atWait_(std::move(atWait)) {}

  bool arm() override { return true; }
  Wake wait(std::chrono::milliseconds /*timeout*/) override {
    failure_.reset();
    if (++waits_ > 3) return {.cancelled = true};
    atWait_(waits_);
    if (waits_ == 2) failure_.emplace(1, true);
    return {.some = true};
  }
  void cancel() override {}

 private:
  std::function<void(int)> atWait_;
  std::optional<FailingAllocation> failure_;
  int waits_ = 0;
};

TEST(OutOfMemory, AFailedPressureReadingKeepsTheLevel) {
  const TemporaryTree tree;
  OutOfMemoryTriggers triggers([&tree](int wait) {
    tree.write("proc/meminfo", wait == 3 ? "MemTotal: 10000 kB\nMemAvailable: 500 kB\n"
                                         : "MemTotal: 10000 kB\nMemAvailable: 3000 kB\n");
  });
  tree.write("proc/meminfo", "MemTotal: 10000 kB\nMemAvailable: 8000 kB\n");
  std::vector<PressureFlags> levels;
  levels.reserve(8);
  watchPressure(tree.roots(), triggers, std::chrono::steady_clock::now,
                [&levels](PressureFlags flags) { levels.push_back(flags); });
  EXPECT_THAT(levels, testing::ElementsAre(2, 2, 2));
}

}  // namespace
}  // namespace tarn
