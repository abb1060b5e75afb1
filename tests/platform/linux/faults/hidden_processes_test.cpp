// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Process tables that hide other users' processes, and kernels that do not tell of stalls, as ordinary users
// find them: mounted for real, in name spaces of the test's own. Takes root.

#include <gmock/gmock.h>
#include <grp.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <future>
#include <string>
#include <vector>

#include "platform/linux/app_identity/linux_sampler_port.hpp"
#include "platform/linux/psi/psi_file.hpp"
#include "platform/linux/psi/psi_pressure_source.hpp"
#include "sampling/memory_sampler.hpp"
#include "support/temporary_tree.hpp"

namespace tarn {
namespace {

constexpr uid_t nobody = 65534;
constexpr std::size_t megabyte = std::size_t{1} << 20U;

/// Why a scenario cannot be had; ends its process.
[[noreturn]] void fail(const char* what) {
  std::fprintf(stderr, "%s: %s\n", what, std::strerror(errno));
  std::fflush(stderr);
  ::_exit(2);
}

void becomeNobody() {
  if (::setgroups(0, nullptr) != 0 || ::setresgid(nobody, nobody, nobody) != 0 ||
      ::setresuid(nobody, nobody, nobody) != 0)
    fail("become an ordinary user");
  // Who changes its user is hidden from that user as well, until it says otherwise.
  ::prctl(PR_SET_DUMPABLE, 1);
}

/// Runs `work` in a process of its own and gives its exit status.
int inProcess(const std::function<int()>& work) {
  const pid_t child = ::fork();
  if (child == 0) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    const int status = work();
    std::fflush(stdout);
    ::_exit(status);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// Runs `work` in a mount name space of its own, which `prepare` changes as root, and as an ordinary user.
/// With `ownPids` it is a pid name space of its own as well.
int inNameSpace(bool ownPids, const std::function<void()>& prepare, const std::function<int()>& work) {
  return inProcess([&] {
    if (::unshare(CLONE_NEWNS | (ownPids ? CLONE_NEWPID : 0)) != 0) fail("unshare");
    if (::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) fail("mounts of its own");
    return inProcess([&] {
      prepare();
      return inProcess([&] {
        becomeNobody();
        return work();
      });
    });
  });
}

/// Starts a process of a user that holds memory; ends with its parent.
pid_t startHolder(bool isForeign, std::size_t bytes) {
  std::array<int, 2> ready{};
  if (::pipe(ready.data()) != 0) fail("pipe");
  const pid_t holder = ::fork();
  if (holder == 0) {
    if (!isForeign) becomeNobody();
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    const std::vector<char> held(bytes, 'x');
    if (::write(ready[1], held.data(), 1) != 1) fail("write");
    for (;;) ::pause();
  }
  char byte = 0;
  if (::read(ready[0], &byte, 1) != 1) fail("a process that holds memory");
  return holder;
}

const ProcessSample* sampleOf(const MemorySnapshot& snapshot, pid_t pid) {
  for (const AppGroup& group : snapshot.groups) {
    for (const ProcessSample& process : group.processes) {
      if (process.pid == pid) return &process;
    }
  }
  return nullptr;
}

bool isNear(std::uint64_t bytes, std::size_t megabytes) {
  return bytes >= megabytes * megabyte && bytes < (megabytes + 40) * megabyte;
}

#define REQUIRE_THAT(condition)                                                \
  if (!(condition)) {                                                          \
    std::fprintf(stderr, "line %d does not hold: %s\n", __LINE__, #condition); \
    return 1;                                                                  \
  }

class HiddenProcesses : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can mount a process table that hides processes";
  }
};

TEST_P(HiddenProcesses, AreAbsentAndTheUsersOwnAreTold) {
  pid_t own = 0;
  pid_t foreign = 0;
  const bool hides = std::strcmp(GetParam(), "0") != 0;
  const auto prepare = [&] {
    if (::mount("proc", "/proc", "proc", 0, (std::string("hidepid=") + GetParam()).c_str()) != 0)
      fail("mount a process table");
    own = startHolder(false, 60 * megabyte);
    foreign = startHolder(true, 60 * megabyte);
  };
  const auto work = [&] {
    MemorySampler sampler(makeLinuxSamplerPort(LinuxRoots{}));
    sampler.sample();
    const std::vector<char> grown(200 * megabyte, 'x');
    for (int sweep = 0; sweep < 12; ++sweep) {
      const MemorySnapshot snapshot = sampler.sample();
      const ProcessSample* const sleeping = sampleOf(snapshot, own);
      const ProcessSample* const self = sampleOf(snapshot, ::getpid());
      REQUIRE_THAT(sleeping != nullptr && isNear(sleeping->footprint, 60) && sleeping->uid == nobody);
      REQUIRE_THAT(self != nullptr && self->footprint > 200 * megabyte && self->cpuPercent >= 0);
      REQUIRE_THAT(!self->path.empty());
      const ProcessSample* const hidden = sampleOf(snapshot, foreign);
      REQUIRE_THAT((hidden == nullptr) == hides);
      REQUIRE_THAT(hides || hidden->uid == 0);
      REQUIRE_THAT((sampleOf(snapshot, 1) == nullptr) == hides);
      REQUIRE_THAT(snapshot.system.totalRAM > 0);
    }
    REQUIRE_THAT(grown.back() == 'x');
    return 0;
  };
  EXPECT_EQ(inNameSpace(true, prepare, work), 0);
}

INSTANTIATE_TEST_SUITE_P(HidePid, HiddenProcesses, testing::Values("0", "1", "2"));

/// Keeps the one task of a pressure source on a thread of its own.
class ThreadQueue final : public TaskQueue {
 public:
  ~ThreadQueue() override {
    if (task_.valid()) task_.wait();
  }
  void async(Task task) override { task_ = std::async(std::launch::async, std::move(task)); }

 private:
  std::future<void> task_;
};

/// What `/proc/pressure` is to who looks, and whether it tells of stalls then.
struct PressureFiles {
  const char* name;
  void (*prepare)();
  bool hasStalls;
};

std::ostream& operator<<(std::ostream& stream, const PressureFiles& files) {
  return stream << files.name;
}

void bind(const char* from, const char* onto) {
  if (::mount(from, onto, nullptr, MS_BIND, nullptr) != 0) fail(onto);
}

class RefusedNotifications : public testing::TestWithParam<PressureFiles> {
 protected:
  void SetUp() override {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can mount something over the kernel's files";
    if (::access("/proc/pressure/memory", R_OK) != 0) GTEST_SKIP() << "this kernel does not count stalls";
  }
};

TEST_P(RefusedNotifications, LeaveTheLevelToLooksAtTheFiles) {
  const auto work = [] {
    REQUIRE_THAT(!PsiTriggers::ofKernel(LinuxRoots{})->arm());
    REQUIRE_THAT(readMemoryPsi(LinuxRoots{}).has_value() == GetParam().hasStalls);
    REQUIRE_THAT(readPressureLevel(LinuxRoots{}).has_value());
    ThreadQueue queue;
    const auto source = std::make_unique<PsiPressureSource>(LinuxRoots{});
    source->resume(queue, [](PressureFlags) {});
    // Beyond the first look, which comes after two seconds.
    ::usleep(2'300'000);
    return 0;
  };
  EXPECT_EQ(inNameSpace(false, GetParam().prepare, work), 0);
}

const PressureFiles pressureFiles[] = {
    {"absent",
     [] {
       if (::mount("none", "/proc/pressure", "tmpfs", 0, nullptr) != 0) fail("mount");
     },
     false},
    {"readOnly",
     [] {
       bind("/proc/pressure/memory", "/proc/pressure/memory");
       if (::mount(nullptr, "/proc/pressure/memory", nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr) != 0)
         fail("remount");
     },
     true},
    {"ordinaryFile", [] { bind("/etc/hostname", "/proc/pressure/memory"); }, false},
    {"refusesWhatIsWritten", [] { bind("/proc/self/oom_score_adj", "/proc/pressure/memory"); }, false},
};

INSTANTIATE_TEST_SUITE_P(All, RefusedNotifications, testing::ValuesIn(pressureFiles),
                         testing::PrintToStringParamName());

}  // namespace
}  // namespace tarn
