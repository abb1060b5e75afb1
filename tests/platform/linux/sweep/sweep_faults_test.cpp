// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Sweeps over this machine's processes while strace makes system calls fail or return wrong values (fault
// injection, strace(1)).

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include "support/idle_processes.hpp"
#include "support/temporary_tree.hpp"

namespace tarn {
namespace {

struct Fault {
  const char* call;
  const char* outcome;
  bool canHitEveryCall = true;  ///< if false, only every third call fails: otherwise retries would never end
};

std::ostream& operator<<(std::ostream& stream, const Fault& fault) {
  return stream << fault.call << ':' << fault.outcome;
}

/// Runs four sweeps under strace. Returns the exit status; 99 means that a sanitizer reported an error.
int runSweeps(const std::string& straceOptions) {
  const std::string command =
      "ASAN_OPTIONS=detect_leaks=0:exitcode=99 UBSAN_OPTIONS=exitcode=99 strace -f --seccomp-bpf -qq " +
      straceOptions + " '" TARN_SWEEP_PROCESSES "' 4";
  // NOLINTNEXTLINE(concurrency-mt-unsafe): there is one thread
  const int status = std::system(command.c_str());
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// The output of strace.
class StraceLog {
 public:
  std::string option() const { return "-o '" + path_ + "' "; }

  /// The number of lines that contain `text`, before the first line that contains `end`.
  int count(const std::string& text, const std::string& end) const {
    int count = 0;
    std::ifstream lines(path_);
    for (std::string line; std::getline(lines, line) && line.find(end) == std::string::npos;) {
      count += line.find(text) != std::string::npos ? 1 : 0;
    }
    return count;
  }

 private:
  TemporaryTree tree_;
  std::string path_ = tree_.at("calls").string();
};

/// Returns the number of calls before the first sweep. Faults are injected only into later calls.
int callsBeforeFirstSweep(const std::string& call) {
  const StraceLog log;
  EXPECT_EQ(runSweeps(log.option() + "-e trace=access," + call), 0) << "is strace installed?";
  return log.count(call + "(", "/begin-sweep");
}

class SweepWithFaults : public testing::TestWithParam<Fault> {};

TEST_P(SweepWithFaults, ExitsNormally) {
  const IdleProcesses idle(20);
  const Fault fault = GetParam();
  const int firstFailingCall = callsBeforeFirstSweep(fault.call) + 1;
  for (const int step : {1, 3}) {
    if (step == 1 && !fault.canHitEveryCall) continue;
    const std::string injection = std::string("inject=") + fault.call + ":" + fault.outcome +
                                  ":when=" + std::to_string(firstFailingCall) + "+" + std::to_string(step);
    const StraceLog log;
    const int status = runSweeps(log.option() + "-e trace=" + fault.call + " -e " + injection);
    EXPECT_GT(log.count("(INJECTED)", "never"), 3) << injection;
    // Status 1: the last sweep found no process.
    EXPECT_TRUE(status == 0 || (status == 1 && step == 1)) << injection << " ended with " << status;
  }
}

INSTANTIATE_TEST_SUITE_P(Faults, SweepWithFaults,
                         testing::Values(Fault{"openat", "error=EACCES"}, Fault{"openat", "error=ENOENT"},
                                         Fault{"openat", "error=EMFILE"}, Fault{"read", "error=EIO"},
                                         Fault{"read", "error=ESRCH"}, Fault{"read", "error=EINTR", false},
                                         Fault{"read", "retval=0"}, Fault{"read", "retval=1", false},
                                         Fault{"readlinkat", "error=EACCES"}, Fault{"readlinkat", "retval=3"},
                                         Fault{"getdents64", "error=EIO"}, Fault{"newfstatat", "error=EIO"},
                                         Fault{"clock_gettime", "error=EINVAL"}));

}  // namespace
}  // namespace tarn
