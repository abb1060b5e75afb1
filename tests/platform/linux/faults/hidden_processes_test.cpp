// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// procfs that hides the processes of other users (hidepid, see proc(5)), and kernels without usable PSI,
// as an unprivileged user sees them. The test mounts them in separate namespaces; it needs root.

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

/// Prints which step of the preparation failed and ends the process.
[[noreturn]] void fail(const char* what) {
  std::fprintf(stderr, "%s: %s\n", what, std::strerror(errno));
  std::fflush(stderr);
  ::_exit(2);
}

void becomeNobody() {
  if (::setgroups(0, nullptr) != 0 || ::setresgid(nobody, nobody, nobody) != 0 ||
      ::setresuid(nobody, nobody, nobody) != 0)
    fail("change to an unprivileged user");
  // setresuid(2) clears the flag, and hidepid then hides the process from its own user, too.
  ::prctl(PR_SET_DUMPABLE, 1);
}

/// Runs `work` in a child process and returns its exit status.
int runInChild(const std::function<int()>& work) {
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

/// Runs `work` as an unprivileged user in a new mount namespace, and a new pid namespace if `newPids`.
/// `prepare` runs first in these namespaces, as root.
int runInNamespace(bool newPids, const std::function<void()>& prepare, const std::function<int()>& work) {
  return runInChild([&] {
    if (::unshare(CLONE_NEWNS | (newPids ? CLONE_NEWPID : 0)) != 0) fail("unshare");
    if (::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) fail("make mounts private");
    return runInChild([&] {
      prepare();
      return runInChild([&] {
        becomeNobody();
        return work();
      });
    });
  });
}

/// Starts a process of another user (root) or of the test's user, which allocates `bytes` and ends with its
/// parent.
pid_t startProcess(bool isForeign, std::size_t bytes) {
  std::array<int, 2> ready{};
  if (::pipe(ready.data()) != 0) fail("pipe");
  const pid_t child = ::fork();
  if (child == 0) {
    if (!isForeign) becomeNobody();
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    const std::vector<char> memory(bytes, 'x');
    if (::write(ready[1], memory.data(), 1) != 1) fail("write");
    for (;;) ::pause();
  }
  char byte = 0;
  if (::read(ready[0], &byte, 1) != 1) fail("wait for the child process");
  return child;
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

#define REQUIRE_THAT(condition)                                           \
  if (!(condition)) {                                                     \
    std::fprintf(stderr, "line %d: %s is false\n", __LINE__, #condition); \
    return 1;                                                             \
  }

class HiddenProcesses : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can mount procfs";
  }
};

TEST_P(HiddenProcesses, AreAbsentAndThoseOfTheUserArePresent) {
  pid_t ownPid = 0;
  pid_t foreignPid = 0;
  const bool isHidden = std::strcmp(GetParam(), "0") != 0;
  const auto prepare = [&] {
    if (::mount("proc", "/proc", "proc", 0, (std::string("hidepid=") + GetParam()).c_str()) != 0)
      fail("mount procfs");
    ownPid = startProcess(false, 60 * megabyte);
    foreignPid = startProcess(true, 60 * megabyte);
  };
  const auto work = [&] {
    MemorySampler sampler(makeLinuxSamplerPort(LinuxRoots{}));
    sampler.sample();
    const std::vector<char> grown(200 * megabyte, 'x');
    for (int sweep = 0; sweep < 12; ++sweep) {
      const MemorySnapshot snapshot = sampler.sample();
      const ProcessSample* const visible = sampleOf(snapshot, ownPid);
      const ProcessSample* const self = sampleOf(snapshot, ::getpid());
      REQUIRE_THAT(visible != nullptr && isNear(visible->footprint, 60) && visible->uid == nobody);
      REQUIRE_THAT(self != nullptr && self->footprint > 200 * megabyte && self->cpuPercent >= 0);
      REQUIRE_THAT(!self->path.empty());
      const ProcessSample* const hidden = sampleOf(snapshot, foreignPid);
      REQUIRE_THAT((hidden == nullptr) == isHidden);
      REQUIRE_THAT(isHidden || hidden->uid == 0);
      REQUIRE_THAT((sampleOf(snapshot, 1) == nullptr) == isHidden);
      REQUIRE_THAT(snapshot.system.totalRAM > 0);
    }
    REQUIRE_THAT(grown.back() == 'x');
    return 0;
  };
  EXPECT_EQ(runInNamespace(true, prepare, work), 0);
}

INSTANTIATE_TEST_SUITE_P(HidePid, HiddenProcesses, testing::Values("0", "1", "2"));

/// Runs the one task of a pressure source on a separate thread.
class ThreadQueue final : public TaskQueue {
 public:
  ~ThreadQueue() override {
    if (task_.valid()) task_.wait();
  }
  void async(Task task) override { task_ = std::async(std::launch::async, std::move(task)); }

 private:
  std::future<void> task_;
};

/// How a scenario changes /proc/pressure, and whether PSI can be read then.
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

class RefusedPsiTriggers : public testing::TestWithParam<PressureFiles> {
 protected:
  void SetUp() override {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can mount over procfs";
    if (::access("/proc/pressure/memory", R_OK) != 0) GTEST_SKIP() << "this kernel has no PSI";
  }
};

TEST_P(RefusedPsiTriggers, FallBackToPolling) {
  const auto work = [] {
    REQUIRE_THAT(!PsiTriggers::ofKernel(LinuxRoots{})->arm());
    REQUIRE_THAT(readMemoryPsi(LinuxRoots{}).has_value() == GetParam().hasStalls);
    REQUIRE_THAT(readPressureLevel(LinuxRoots{}).has_value());
    ThreadQueue queue;
    const auto source = std::make_unique<PsiPressureSource>(LinuxRoots{});
    source->resume(queue, [](PressureFlags) {});
    // Real time: the source must still run after its first poll, which is after two seconds.
    ::usleep(2'300'000);
    return 0;
  };
  EXPECT_EQ(runInNamespace(false, GetParam().prepare, work), 0);
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
    {"regularFile", [] { bind("/etc/hostname", "/proc/pressure/memory"); }, false},
    {"refusesWrites", [] { bind("/proc/self/oom_score_adj", "/proc/pressure/memory"); }, false},
};

INSTANTIATE_TEST_SUITE_P(All, RefusedPsiTriggers, testing::ValuesIn(pressureFiles),
                         testing::PrintToStringParamName());

}  // namespace
}  // namespace tarn
