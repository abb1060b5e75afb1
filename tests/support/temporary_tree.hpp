// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "platform/linux/procfs/linux_roots.hpp"

namespace tarn {

/// A temporary directory that stands for `/`, removed by the destructor. Functions throw on failure, which
/// fails the test.
class TemporaryTree {
 public:
  TemporaryTree();
  TemporaryTree(const TemporaryTree&) = delete;
  TemporaryTree& operator=(const TemporaryTree&) = delete;
  ~TemporaryTree();

  LinuxRoots roots() const;

  /// Writes a file, such as "proc/swaps". Creates its parent directories and replaces an existing file.
  void write(const std::string& path, std::string_view text) const;
  void link(const std::string& path, const std::string& target) const;
  void pipe(const std::string& path) const;
  void remove(const std::string& path) const;
  std::filesystem::path at(const std::string& path) const { return root_ / path; }

 private:
  std::filesystem::path prepared(const std::string& path) const;

  std::filesystem::path root_;
};

/// The contents of the /proc/PID files of one process. Tests set the fields that they need.
struct ProcessFixture {
  std::int32_t pid = 0;
  std::string name = "worker";
  std::string ppid = "1";
  std::uint64_t userTicks = 100;
  std::uint64_t systemTicks = 50;
  std::uint64_t startTicks = 5000;
  std::uint32_t flags = 4194304;
  std::string statm = "5000 300 100 5 0 123 0\n";
  std::string owners = "1000\t1001\t1002\t1003";
  std::string swapLine = "VmSwap:\t       0 kB\n";
  std::string commandLine;  ///< with the zero bytes of /proc/PID/cmdline

  std::string stat() const;
  void writeTo(const TemporaryTree& tree) const;
};

}  // namespace tarn
