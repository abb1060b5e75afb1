// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/procfs/proc_pid_files.hpp"

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "platform/linux/procfs/text_scan.hpp"

namespace tarn {
namespace {

using namespace std::string_literals;

std::string statOf(const std::string& name) {
  return "412 (" + name + ") S 7 412 412 0 -1 4194304 138 0 1 0 11 12 13 14 20 0 1 0 174933 2990080 421 0\n";
}

/// The text with the word at `index` after the name replaced.
std::string statWith(std::size_t index, const std::string& word) {
  std::string text = "412 (worker)";
  std::string line = statOf("worker");
  std::string_view rest = std::string_view(line).substr(text.size());
  for (std::size_t field = 0; !rest.empty(); ++field) {
    const std::string_view original = takeWord(rest);
    text += " " + (field == index ? word : std::string(original));
  }
  return text + "\n";
}

TEST(ProcessStat, ParsesNameParentTimesAndStart) {
  const std::string text = statOf("worker");
  const auto stat = parseProcessStat(text);
  ASSERT_TRUE(stat);
  EXPECT_EQ(stat->name, "worker");
  EXPECT_EQ(stat->ppid, 7);
  EXPECT_EQ(stat->userTicks, 11U);
  EXPECT_EQ(stat->systemTicks, 12U);
  EXPECT_EQ(stat->startTicks, 174933U);
}

TEST(ProcessStat, StateIdentifiesZombies) {
  for (const char* state : {"Z", "X"}) EXPECT_TRUE(parseProcessStat(statWith(0, state))->isZombie) << state;
  for (const char* state : {"R", "S", "D", "T", "t", "I"}) {
    EXPECT_FALSE(parseProcessStat(statWith(0, state))->isZombie) << state;
  }
}

TEST(ProcessStat, FlagsIdentifyKernelThreads) {
  EXPECT_TRUE(parseProcessStat(statWith(6, "2129984"))->isKernelThread);
  EXPECT_FALSE(parseProcessStat(statWith(6, "4194304"))->isKernelThread);
}

class ProcessStatNames : public testing::TestWithParam<std::string> {};

TEST_P(ProcessStatNames, MayHoldAnyBytes) {
  const std::string text = statOf(GetParam());
  const auto stat = parseProcessStat(text);
  ASSERT_TRUE(stat);
  EXPECT_EQ(stat->name, GetParam());
  EXPECT_EQ(stat->ppid, 7);
  EXPECT_EQ(stat->startTicks, 174933U);
}

INSTANTIATE_TEST_SUITE_P(Rows, ProcessStatNames,
                         testing::Values("a) b (c\n", ")", "(", "", "()", "(sd-pam)", "x) R 1 2 3",
                                         "Web Content", "\xff\xfe", "kworker/u8:2-events_unbound"));

TEST(ProcessStat, AcceptsTheLargestNumbers) {
  EXPECT_EQ(parseProcessStat(statWith(1, "2147483647"))->ppid, 2147483647);
  EXPECT_EQ(parseProcessStat(statWith(19, "18446744073709551615"))->startTicks, 18446744073709551615U);
}

class BrokenProcessStats : public testing::TestWithParam<std::string> {};

TEST_P(BrokenProcessStats, ReturnNullopt) {
  EXPECT_FALSE(parseProcessStat(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, BrokenProcessStats,
    testing::Values("", "\n", "412", "412 (worker", "412 worker) S 7", ")(", "412 (worker)", "412 (worker) S",
                    "412 (worker) S 7 412 412 0 -1 4194304 138 0 1 0 11 12 13 14 20 0 1 0 174933",
                    "412 (worker) S 7 412 412 0 -1 4194304 138 0 1 0 11 12 13 14 20 0 1 0 ",
                    statWith(0, "SS"), statWith(1, "-1"), statWith(1, "2147483648"),
                    statWith(1, "4294967295"), statWith(1, "7x"), statWith(11, "18446744073709551616"),
                    statWith(12, "-5"), statWith(19, "0x10"), statWith(19, "99999999999999999999999"),
                    std::string(1 << 20, 'a'), std::string(1 << 20, '('), "\0\0\0\0"s));

TEST(ProcessStat, TruncatedTextNeverReturnsAWrongFigure) {
  const std::string text = statOf("worker");
  for (std::size_t length = 0; length < text.size(); ++length) {
    const auto stat = parseProcessStat(std::string_view(text).substr(0, length));
    if (stat) {
      EXPECT_EQ(stat->startTicks, 174933U) << "cut at " << length;
    }
  }
}

TEST(ProcessPages, AreTheSecondAndThirdColumn) {
  const auto pages = parseProcessPages("730 448 421 5 0 89 0\n");
  ASSERT_TRUE(pages);
  EXPECT_EQ(pages->resident, 448U);
  EXPECT_EQ(pages->shared, 421U);
}

TEST(ProcessPages, ReturnNulloptForBrokenText) {
  for (const char* text : {"", "730", "730 448", "730 448 421", "730 x 421 5\n", "730 448 -1 5\n",
                           "730 18446744073709551616 0 5\n", "\n\n\n"}) {
    EXPECT_FALSE(parseProcessPages(text)) << text;
  }
}

TEST(ProcessStatus, OwnerIsTheRealUserId) {
  EXPECT_EQ(parseRealOwner("Name:\tx\nUid:\t1000\t0\t0\t0\nGid:\t5\t5\t5\t5\n"), 1000U);
  EXPECT_EQ(parseRealOwner("Uid:\t4294967294\t0\t0\t0\n"), 4294967294U);
}

TEST(ProcessStatus, ReturnsNulloptForAMissingOrMalformedOwner) {
  for (const char* text :
       {"", "Name:\tx\n", "Uid:\n", "Uid:\troot\n", "Uid:\t4294967296\t0\n", "Name:\tUid: 5\n"}) {
    EXPECT_FALSE(parseRealOwner(text)) << text;
  }
}

TEST(ProcessStatus, SwapIsInKibibytesAndZeroWithoutALine) {
  EXPECT_EQ(parseSwappedBytes("VmRSS:\t 5 kB\nVmSwap:\t     120 kB\n"), 122880U);
  EXPECT_EQ(parseSwappedBytes("Name:\tkthreadd\n"), 0U);
  EXPECT_EQ(parseSwappedBytes("VmSwap:\t18446744073709551615 kB\n"), 0U);
  EXPECT_EQ(parseSwappedBytes("VmSwap:\t-1 kB\n"), 0U);
}

TEST(SystemStat, BootTimeMayFollowALongLine) {
  EXPECT_EQ(parseBootTime("cpu 1 2\nintr " + std::string(200'000, '7') + "\nbtime 1795261724\n"),
            1795261724U);
  EXPECT_FALSE(parseBootTime("cpu 1 2\n"));
  EXPECT_FALSE(parseBootTime("btime soon\n"));
}

struct NameRow {
  std::string kernelName;
  std::string commandLine;
  std::string expected;
};

class CompletedNames : public testing::TestWithParam<NameRow> {};

TEST_P(CompletedNames, ComeFromTheCommandLineOnlyIfItContinuesTheKernelName) {
  EXPECT_EQ(completedName(GetParam().kernelName, GetParam().commandLine), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, CompletedNames,
    testing::Values(
        NameRow{"gnome-terminal-", "/usr/libexec/gnome-terminal-server\0"s, "gnome-terminal-server"},
        NameRow{"python3", "/usr/bin/python3.11\0-m\0http.server\0"s, "python3.11"},
        NameRow{"sleep",
                "sleep\0"
                "300\0"s,
                "sleep"},
        NameRow{"kthreadd", "", "kthreadd"}, NameRow{"bash", "-bash\0"s, "bash"},
        NameRow{"Web Content", "/opt/browser/browser\0-contentproc\0"s, "Web Content"},
        NameRow{"My Long Program", "/opt/My Long Program Name/My Long Program Name\0"s, "My Long Program"},
        NameRow{"long-name-of-pr", "/opt/My App/long-name-of-program\0"s, "long-name-of-program"},
        // Programs that overwrite their arguments with their state:
        NameRow{"postgres", "postgres: writer    \0\0\0"s, "postgres"},
        NameRow{"postgres", "postgres: 14/main: checkpointer", "postgres"},
        NameRow{"systemd-userwor", "systemd-userwork: waiting...\0"s, "systemd-userwork"},
        NameRow{"sshd", "sshd: /usr/sbin/sshd -D [listener] 0 of 10-100 startups\0"s, "sshd"},
        NameRow{"nginx", "nginx: master process /usr/sbin/nginx -g daemon on;\0"s, "nginx"},
        NameRow{"sshd", "sshd: someone@pts/0\0"s, "sshd"}, NameRow{"odd:", "odd:\0"s, "odd:"},
        NameRow{"worker", "/srv/worker/\0"s, "worker"}, NameRow{"", "/usr/bin/nameless one\0"s, "nameless"},
        NameRow{"", "", ""}, NameRow{"a", "\0a\0"s, "a"}));

}  // namespace
}  // namespace tarn
