// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/linux/procfs/proc_pid_files.hpp"
#include "support/temporary_tree.hpp"

namespace tarn {
namespace {

class NamespacedPidTest : public ::testing::Test {
 protected:
  /// `pids` of the nested pid namespaces, the outermost first.
  void add(const std::string& pid, const std::string& pids, int owner = 1000,
           const std::string& memory = "VmSize:\t  100 kB\n") {
    const std::string number = std::to_string(owner);
    tree_.write("proc/" + pid + "/status", "Name:\tx\nUid:\t" + number + '\t' + number + '\t' + number +
                                               '\t' + number + "\nNSpid:\t" + pids + '\n' + memory);
  }

  std::optional<std::int32_t> find(std::int32_t declared) {
    return resolveNamespacedPid(tree_.roots().proc, declared, 1000,
                                std::chrono::steady_clock::now() + std::chrono::seconds(10));
  }

  TemporaryTree tree_;
};

TEST_F(NamespacedPidTest, FindsTheProcessWithThatPid) {
  add("4242", "4242");
  add("4243", "4243");
  EXPECT_EQ(find(4242), 4242);
  EXPECT_EQ(find(4244), std::nullopt);
}

TEST_F(NamespacedPidTest, FindsTheProcessWithThatPidInItsInnermostNamespace) {
  add("2", "2", 0, "");
  add("5000", "5000\t2");
  add("5001", "5001\t17\t3");
  EXPECT_EQ(find(2), 5000);
  EXPECT_EQ(find(3), 5001);
  EXPECT_EQ(find(17), std::nullopt) << "a process declares its innermost pid";
  EXPECT_EQ(find(5000), std::nullopt) << "a process cannot declare its outer pid";
}

TEST_F(NamespacedPidTest, ReturnsNulloptWhenSeveralProcessesMatch) {
  add("5000", "5000\t2");
  add("6000", "6000\t2");
  EXPECT_EQ(find(2), std::nullopt);
  add("7", "7");
  add("6001", "6001\t7");
  EXPECT_EQ(find(7), std::nullopt);
}

TEST_F(NamespacedPidTest, IgnoresOtherUsersAndKernelThreads) {
  add("100", "100", 0);
  add("101", "101", 1000, "");
  EXPECT_EQ(find(100), std::nullopt) << "of another user";
  EXPECT_EQ(find(101), std::nullopt) << "a thread of the kernel";
}

TEST_F(NamespacedPidTest, ReturnsNulloptAfterTheDeadlineOrWithoutProcesses) {
  add("4242", "4242");
  const auto now = std::chrono::steady_clock::now();
  EXPECT_EQ(resolveNamespacedPid(tree_.roots().proc, 4242, 1000, now), std::nullopt);
  EXPECT_EQ(resolveNamespacedPid("/nowhere", 4242, 1000, now + std::chrono::seconds(10)), std::nullopt);
  tree_.write("proc/77/status", "garbage\n\xff NSpid:\t77");
  tree_.write("proc/78/status", "");
  EXPECT_EQ(find(77), std::nullopt);
}

TEST(NamespacedPid, FindsThisProcess) {
  EXPECT_EQ(resolveNamespacedPid("/proc", getpid(), getuid(),
                                 std::chrono::steady_clock::now() + std::chrono::seconds(10)),
            getpid());
}

}  // namespace
}  // namespace tarn
