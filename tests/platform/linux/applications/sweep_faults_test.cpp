// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Sweeps over this machine's processes in which the kernel refuses, breaks off or invents what it is asked
// for, as strace has it do.

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include "platform/linux/system/temporary_tree.hpp"
#include "support/idle_processes.hpp"

namespace tarn {
namespace {

struct Fault {
  const char* call;
  const char* outcome;
};

std::ostream& operator<<(std::ostream& stream, const Fault& fault) {
  return stream << fault.call << ':' << fault.outcome;
}

/// Runs four sweeps under strace and gives their exit status; 99 where a sanitizer found something.
int sweepUnder(const std::string& straceOptions) {
  const std::string command =
      "ASAN_OPTIONS=detect_leaks=0:exitcode=99 UBSAN_OPTIONS=exitcode=99 strace -f -qq " + straceOptions +
      " '" TARN_SWEEP_PROCESSES "' 4";
  // NOLINTNEXTLINE(concurrency-mt-unsafe): there is one thread
  const int status = std::system(command.c_str());
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// How often a call is made before the first sweep begins, which is not to be disturbed.
int callsBeforeTheSweeps(const std::string& call) {
  const TemporaryTree tree;
  const std::string log = tree.at("calls").string();
  EXPECT_EQ(sweepUnder("-e trace=access," + call + " -o '" + log + "'"), 0) << "is strace installed?";
  int count = 0;
  std::ifstream lines(log);
  for (std::string line; std::getline(lines, line) && line.find("/begin-sweep") == std::string::npos;) {
    count += line.find(call + "(") != std::string::npos ? 1 : 0;
  }
  return count;
}

class SweepWithFaults : public testing::TestWithParam<Fault> {};

TEST_P(SweepWithFaults, EndsAsAnyOther) {
  const IdleProcesses idle(20);
  const Fault fault = GetParam();
  const int first = callsBeforeTheSweeps(fault.call) + 1;
  for (const int step : {1, 2, 7}) {
    const std::string injection = std::string("inject=") + fault.call + ":" + fault.outcome +
                                  ":when=" + std::to_string(first) + "+" + std::to_string(step);
    const int status = sweepUnder("-e trace=none -o /dev/null -e " + injection);
    // 1 says that the last sweep found no process.
    EXPECT_TRUE(status == 0 || (status == 1 && step == 1)) << injection << " ended with " << status;
  }
}

INSTANTIATE_TEST_SUITE_P(Faults, SweepWithFaults,
                         testing::Values(Fault{"openat", "error=EACCES"}, Fault{"openat", "error=ENOENT"},
                                         Fault{"openat", "error=EMFILE"}, Fault{"read", "error=EIO"},
                                         Fault{"read", "error=ESRCH"}, Fault{"read", "error=EINTR"},
                                         Fault{"read", "retval=0"}, Fault{"read", "retval=5"},
                                         Fault{"readlinkat", "error=EACCES"}, Fault{"readlinkat", "retval=3"},
                                         Fault{"getdents64", "error=EIO"}, Fault{"newfstatat", "error=EIO"},
                                         Fault{"clock_gettime", "error=EINVAL"}));

}  // namespace
}  // namespace tarn
