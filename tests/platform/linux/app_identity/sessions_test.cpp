// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Whole process tables, with the control groups and desktop files that go with them, and the application that
// each process is to be found under.

#include <gtest/gtest.h>

#include <fstream>
#include <map>

#include "platform/linux/app_identity/linux_application_rules.hpp"
#include "platform/linux/procfs/sleeping_process_cache.hpp"
#include "support/temporary_tree.hpp"
#include "sampling/memory_sampler.hpp"

namespace tarn {
namespace {

class NoMemory final : public SystemMemoryReader {
 public:
  std::uint64_t totalRAM() override { return 0; }
  std::uint64_t swapUsed() override { return 0; }
  SystemMemory read() override { return {}; }
};

/// Reads a ".session" file: "[file PATH]" begins a file, "[process PID]" a process, whose lines are
/// "key = value".
class Session {
 public:
  explicit Session(const std::filesystem::path& path) {
    std::ifstream file(path);
    if (!file) throw std::runtime_error("no such session: " + path.string());
    for (std::string line; std::getline(file, line);) {
      if (line.starts_with('[') && !line.starts_with("[Desktop") && !line.starts_with("[D-BUS")) {
        begin(line.substr(1, line.size() - 2));
      } else if (!line.empty() && !line.starts_with('#')) {
        add(line);
      }
    }
    finish();
  }

  const std::map<std::int32_t, std::string>& applications() const { return applications_; }

  /// The application of each process, as one sweep finds it; "none" for a process on its own.
  std::map<std::int32_t, std::string> foundApplications() const {
    SamplerPort port;
    auto processes = std::make_unique<SleepingProcessCache>(ProcfsReader(tree_.roots()));
    port.applicationRules = std::make_unique<LinuxApplicationRules>(
        tree_.roots(),
        ApplicationIndex(tree_.roots(),
                         {"/home/a/.local/share", "/usr/share", "/home/a/.local/share/flatpak/exports/share",
                          "/var/lib/flatpak/exports/share", "/var/lib/snapd/desktop"},
                         {"/usr/bin"}),
        [&cache = *processes](std::int32_t pid) { return cache.execId(pid); });
    port.processes = std::move(processes);
    port.memory = std::make_unique<NoMemory>();
    port.uptime = [] { return 1.0; };
    const MemorySnapshot snapshot = MemorySampler(std::move(port)).sample();
    std::map<std::int32_t, std::string> found;
    for (const AppGroup& group : snapshot.groups) {
      for (const ProcessSample& process : group.processes)
        found[process.pid] = group.bundlePath.value_or("none");
    }
    return found;
  }

 private:
  void begin(const std::string& heading) {
    finish();
    const std::size_t blank = heading.find(' ');
    isProcess_ = heading.substr(0, blank) == "process";
    subject_ = heading.substr(blank + 1);
  }

  void add(const std::string& line) {
    if (!isProcess_) {
      text_ += line + '\n';
      return;
    }
    const std::size_t equals = line.find(" = ");
    const std::string key = line.substr(0, equals);
    const std::string value = equals == std::string::npos ? "" : line.substr(equals + 3);
    if (key == "group") {
      text_ += value + '\n';
    } else {
      values_[key] = value;
    }
  }

  void finish() {
    if (isProcess_) {
      writeProcess();
    } else if (!subject_.empty()) {
      tree_.write(subject_.substr(1), text_);
    }
    subject_.clear();
    text_.clear();
    values_.clear();
    isProcess_ = false;
  }

  void writeProcess() {
    ProcessFixture process;
    process.pid = std::stoi(subject_);
    process.ppid = values_["parent"];
    process.commandLine = values_["arguments"];
    std::replace(process.commandLine.begin(), process.commandLine.end(), '|', '\0');
    process.writeTo(tree_);
    const std::string directory = "proc/" + subject_ + '/';
    tree_.link(directory + "exe", values_["executable"]);
    tree_.write(directory + "cgroup", text_);
    applications_[process.pid] = values_["application"];
  }

  TemporaryTree tree_;
  std::map<std::int32_t, std::string> applications_;
  bool isProcess_ = false;
  std::string subject_;
  std::string text_;
  std::map<std::string, std::string> values_;
};

class SessionsTest : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(SessionsTest, HaveEveryProcessUnderItsApplication) {
  const Session session(GetParam());
  EXPECT_GT(session.applications().size(), 3U);
  EXPECT_EQ(session.foundApplications(), session.applications());
}

std::vector<std::filesystem::path> sessions() {
  const std::filesystem::directory_iterator entries(TARN_FIXTURES "/linux/sessions");
  return {begin(entries), end(entries)};
}

INSTANTIATE_TEST_SUITE_P(All, SessionsTest, testing::ValuesIn(sessions()), [](const auto& session) {
  std::string name = session.param.stem().string();
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
});

}  // namespace
}  // namespace tarn
