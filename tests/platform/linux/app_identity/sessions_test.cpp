// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Tests with recorded process tables, cgroups and desktop files: each process must have the expected
// application.

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>

#include "platform/linux/app_identity/linux_sampler_port.hpp"
#include "sampling/memory_sampler.hpp"
#include "support/temporary_tree.hpp"

namespace tarn {
namespace {

/// Reads a ".session" file. A section "[file PATH]" holds the content of a file. A section "[process PID]"
/// holds lines "KEY = VALUE": `parent` (pid), `executable`, `arguments` (separated by "|"), `cgroup` (a line
/// of /proc/PID/cgroup; may be repeated) and `application` (the expected desktop file, or "none"). Lines that
/// begin with "#" are comments.
class Session {
 public:
  explicit Session(const std::filesystem::path& path) {
    std::ifstream file(path);
    if (!file) throw std::runtime_error("cannot read " + path.string());
    for (std::string line; std::getline(file, line);) {
      // The headings of desktop files and D-Bus service files belong to the content of a file.
      if (line.starts_with('[') && !line.starts_with("[Desktop") && !line.starts_with("[D-BUS")) {
        beginSection(line.substr(1, line.size() - 2));
      } else if (!line.empty() && !line.starts_with('#')) {
        addLine(line);
      }
    }
    finishSection();
  }

  const std::map<std::int32_t, std::string>& expectedApplications() const { return expectedApplications_; }

  /// The application of each process in one sweep; "none" for a process that is a group by itself.
  std::map<std::int32_t, std::string> sampledApplications() const {
    const auto environment = [](const char* variable) -> std::string {
      const std::string_view name = variable;
      if (name == "HOME") return "/home/a";
      if (name == "XDG_DATA_DIRS") return "/usr/share";
      return {};
    };
    const MemorySnapshot snapshot = MemorySampler(makeLinuxSamplerPort(tree_.roots(), environment)).sample();
    std::map<std::int32_t, std::string> applications;
    for (const AppGroup& group : snapshot.groups) {
      for (const ProcessSample& process : group.processes)
        applications[process.pid] = group.bundlePath.value_or("none");
    }
    return applications;
  }

 private:
  void beginSection(const std::string& heading) {
    finishSection();
    const std::size_t space = heading.find(' ');
    isProcess_ = heading.substr(0, space) == "process";
    subject_ = heading.substr(space + 1);
  }

  void addLine(const std::string& line) {
    if (!isProcess_) {
      text_ += line + '\n';
      return;
    }
    const std::size_t equals = line.find(" = ");
    const std::string key = line.substr(0, equals);
    const std::string value = equals == std::string::npos ? "" : line.substr(equals + 3);
    if (key == "cgroup") {
      text_ += value + '\n';
    } else {
      values_[key] = value;
    }
  }

  void finishSection() {
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
    expectedApplications_[process.pid] = values_["application"];
  }

  TemporaryTree tree_;
  std::map<std::int32_t, std::string> expectedApplications_;
  bool isProcess_ = false;                     ///< whether the current section is a process
  std::string subject_;                        ///< path or pid of the current section
  std::string text_;                           ///< content of the section's file, or of /proc/PID/cgroup
  std::map<std::string, std::string> values_;  ///< the other keys of a process
};

class SessionsTest : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(SessionsTest, EveryProcessBelongsToItsApplication) {
  const Session session(GetParam());
  EXPECT_GT(session.expectedApplications().size(), 3U);
  EXPECT_EQ(session.sampledApplications(), session.expectedApplications());
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
