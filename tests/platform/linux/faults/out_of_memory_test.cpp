// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Sweeps and gatherings that are refused memory, once at each of their allocations: each is whole or throws,
// and the one after it is right.

#include <gmock/gmock.h>

#include <functional>
#include <new>
#include <optional>
#include <vector>

#include "extras/extras_reader.hpp"
#include "platform/linux/faults/machine_fixture.hpp"
#include "platform/linux/sysfs/linux_extras_port.hpp"
#include "platform/linux/psi/psi_pressure_source.hpp"
#include "sampling/memory_sampler.hpp"
#include "sampling/pid_map.hpp"
#include "support/allocation_count.hpp"

namespace tarn {
namespace {

/// What is told of one process.
struct Told {
  std::int32_t pid = 0;
  std::string group;
  std::string groupName;
  std::string name;
  std::uint64_t footprint = 0;

  bool operator==(const Told&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const Told& told) {
  return stream << told.pid << ' ' << told.group << ' ' << told.groupName << ' ' << told.name << ' '
                << told.footprint;
}

std::vector<Told> toldIn(const MemorySnapshot& snapshot) {
  std::vector<Told> told;
  for (const AppGroup& group : snapshot.groups) {
    for (const ProcessSample& process : group.processes)
      told.push_back({process.pid, group.id, group.name.string(), process.name.string(), process.footprint});
  }
  return told;
}

/// The machine, and a sampler of it. Every process takes a quarter of a core.
class Sampling {
 public:
  explicit Sampling(const TemporaryTree& tree)
      : sampler_(wholeMachinePort(
            tree.roots(), [this](std::int32_t pid) { return clockOf(pid); },
            [this] { return time_ += 0.25; })) {}

  MemorySnapshot sample() {
    start_ = time_ += 3;
    return sampler_.sample();
  }

  /// From now on nobody does anything.
  void fallAsleep() { asleepSince_ = start_; }

 private:
  std::optional<std::uint64_t> clockOf(std::int32_t /*pid*/) const {
    return static_cast<std::uint64_t>(asleepSince_.value_or(start_) * 250'000'000);
  }

  double time_ = 1000;
  double start_ = time_;  ///< of the latest sweep
  std::optional<double> asleepSince_;
  MemorySampler sampler_;
};

/// Does `work`, of which the `number`-th allocation is refused. Nothing when it was not so many.
enum class Outcome { whole, thrown, notReached };

template <typename Work>
Outcome refuse(std::size_t number, bool isLasting, Work work) {
  const FailingAllocation refusal(number, isLasting);
  try {
    work();
  } catch (const std::bad_alloc&) {
    return Outcome::thrown;
  }
  return refusal.happened() ? Outcome::whole : Outcome::notReached;
}

/// Runs a trial for the first allocation, the second, and so on until it takes no more; gives how many were
/// refused. `trial` takes the number and tells what came of it.
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
  OutOfMemory() { writeWholeMachine(tree_); }

  static void expectShares(const MemorySnapshot& snapshot, double share) {
    for (const AppGroup& group : snapshot.groups) {
      for (const ProcessSample& process : group.processes)
        EXPECT_NEAR(process.cpuPercent, share, 1e-6) << process.pid;
    }
  }

  TemporaryTree tree_;
};

TEST_P(OutOfMemory, TheFirstSweepIsWholeOrThrowsAndTheNextOneIsRight) {
  const MemorySnapshot right = Sampling(tree_).sample();
  ASSERT_EQ(toldIn(right).size(), 4U);
  const std::size_t thrown = forEachAllocation([&](std::size_t number) {
    Sampling sampling(tree_);
    MemorySnapshot snapshot;
    const Outcome outcome = refuse(number, GetParam(), [&] { snapshot = sampling.sample(); });
    if (outcome == Outcome::thrown) snapshot = sampling.sample();
    EXPECT_EQ(toldIn(snapshot), toldIn(right));
    EXPECT_EQ(snapshot.system, right.system);
    expectShares(sampling.sample(), 25);
    return outcome;
  });
  EXPECT_GT(thrown, 50U);
}

TEST_P(OutOfMemory, ALaterSweepIsWholeOrThrowsAndTheNextOneIsRight) {
  tree_.write("proc/swaps", "");  // where nothing is swapped, who sleeps is not read again
  const auto before = [this] {
    tree_.remove("proc/43");
    tree_.remove("usr/share/applications/more");
    ProcessFixture{.pid = 41, .name = "helper", .statm = "5000 400 100 5 0 123 0\n"}.writeTo(tree_);
    tree_.write("sys/devices/system/memory/memory64/online", "0\n");
    // The clock of the file system may not have moved when something is installed.
    std::filesystem::last_write_time(tree_.at("usr/share/applications"),
                                     std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
  };
  // Who grew, who came, what was installed, and a machine that got more memory.
  const auto after = [this] {
    ProcessFixture{.pid = 41, .name = "helper", .statm = "5000 900 100 5 0 123 0\n"}.writeTo(tree_);
    ProcessFixture{.pid = 43, .name = "newcomer", .startTicks = 9000}.writeTo(tree_);
    tree_.link("proc/43/exe", "/usr/bin/viewer");
    tree_.write("usr/bin/viewer", "");
    tree_.write("usr/share/applications/more/viewer.desktop",
                "[Desktop Entry]\nType=Application\nName=Viewer\nExec=/usr/bin/viewer\n");
  };
  after();
  const MemorySnapshot right = Sampling(tree_).sample();
  ASSERT_EQ(toldIn(right).size(), 5U);
  const std::size_t thrown = forEachAllocation([&](std::size_t number) {
    before();
    Sampling sampling(tree_);
    sampling.sample();
    sampling.sample();
    after();
    MemorySnapshot snapshot;
    const Outcome outcome = refuse(number, GetParam(), [&] { snapshot = sampling.sample(); });
    // What was kept in the broken sweep of who sleeps from then on would be told again.
    sampling.fallAsleep();
    if (outcome == Outcome::thrown) snapshot = sampling.sample();
    EXPECT_EQ(toldIn(snapshot), toldIn(right));
    EXPECT_EQ(snapshot.system, right.system);
    expectShares(sampling.sample(), 0);
    return outcome;
  });
  EXPECT_GT(thrown, 30U);
}

TEST_P(OutOfMemory, AGatheringIsWholeOrThrowsAndTheNextOneIsRight) {
  const auto gather = [](const ExtrasReader& reader) {
    SystemExtras extras = reader.read();
    extras.uptime = 0;
    if (extras.storage) extras.storage->available = 0;  // which others may take
    return std::pair(extras, reader.thermalState());
  };
  const auto right = gather(ExtrasReader(linuxExtrasPort(tree_.roots())));
  ASSERT_TRUE(right.first.battery && right.first.temperatureCelsius && right.first.storage);
  ASSERT_EQ(right.first.storage->volumeName, "A label of some length");
  const std::size_t thrown = forEachAllocation([&](std::size_t number) {
    const ExtrasReader reader(linuxExtrasPort(tree_.roots()));
    auto gathered = right;
    const Outcome outcome = refuse(number, GetParam(), [&] { gathered = gather(reader); });
    if (outcome == Outcome::thrown) gathered = gather(reader);
    EXPECT_EQ(gathered, right);
    return outcome;
  });
  EXPECT_GT(thrown, 50U);
}

INSTANTIATE_TEST_SUITE_P(RefusedOnceAndFromThenOn, OutOfMemory, testing::Bool());

TEST(OutOfMemory, AMapThatCannotGrowIsAsItWas) {
  const std::size_t thrown = forEachAllocation([](std::size_t number) {
    PidMap<int> map;
    for (std::int32_t pid = 1; pid <= 8; ++pid) map[pid * 100] = pid;
    const Outcome outcome = refuse(number, false, [&map] { map[7] = 7; });
    for (std::int32_t pid = 1; pid <= 8; ++pid) {
      const int* const value = map.find(pid * 100);
      EXPECT_TRUE(value != nullptr && *value == pid) << pid;
    }
    EXPECT_EQ(map.contains(7), outcome != Outcome::thrown);
    return outcome;
  });
  EXPECT_EQ(thrown, 2U);
}

/// Refuses memory during one look of three.
class LeanTriggers final : public PsiTriggers {
 public:
  explicit LeanTriggers(std::function<void(int)> atWait) : atWait_(std::move(atWait)) {}

  bool arm() override { return true; }
  Wake wait(std::chrono::milliseconds /*timeout*/) override {
    refusal_.reset();
    if (++waits_ > 3) return {.cancelled = true};
    atWait_(waits_);
    if (waits_ == 2) refusal_.emplace(1, true);
    return {.some = true};
  }
  void cancel() override {}

 private:
  std::function<void(int)> atWait_;
  std::optional<FailingAllocation> refusal_;
  int waits_ = 0;
};

TEST(OutOfMemory, ALookAtThePressureLeavesTheLevelAsItIs) {
  const TemporaryTree tree;
  LeanTriggers triggers([&tree](int wait) {
    tree.write("proc/meminfo", wait == 3 ? "MemTotal: 10000 kB\nMemAvailable: 500 kB\n"
                                         : "MemTotal: 10000 kB\nMemAvailable: 3000 kB\n");
  });
  tree.write("proc/meminfo", "MemTotal: 10000 kB\nMemAvailable: 8000 kB\n");
  std::vector<PressureFlags> told;
  told.reserve(8);
  watchPressure(tree.roots(), triggers, std::chrono::steady_clock::now,
                [&told](PressureFlags flags) { told.push_back(flags); });
  EXPECT_THAT(told, testing::ElementsAre(2, 2, 2));
}

}  // namespace
}  // namespace tarn
