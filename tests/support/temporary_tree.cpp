// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "support/temporary_tree.hpp"

#include <sys/stat.h>

#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace tarn {

TemporaryTree::TemporaryTree() {
  std::string name = (std::filesystem::temp_directory_path() / "tarn-test-XXXXXX").string();
  if (!::mkdtemp(name.data())) throw std::runtime_error("no temporary directory");
  root_ = name;
  std::filesystem::create_directories(root_ / "proc");
  std::filesystem::create_directories(root_ / "sys");
}

TemporaryTree::~TemporaryTree() {
  std::error_code ignored;
  std::filesystem::remove_all(root_, ignored);
}

LinuxRoots TemporaryTree::roots() const {
  return {(root_ / "proc").string(), (root_ / "sys").string(), root_.string()};
}

std::filesystem::path TemporaryTree::prepared(const std::string& path) const {
  std::filesystem::create_directories(at(path).parent_path());
  std::filesystem::remove(at(path));
  return at(path);
}

void TemporaryTree::write(const std::string& path, std::string_view text) const {
  std::ofstream file(prepared(path), std::ios::binary);
  file.write(text.data(), static_cast<std::streamsize>(text.size()));
  if (!file.flush()) throw std::runtime_error("cannot write " + path);
}

void TemporaryTree::link(const std::string& path, const std::string& target) const {
  std::filesystem::create_symlink(target, prepared(path));
}

void TemporaryTree::pipe(const std::string& path) const {
  if (::mkfifo(prepared(path).c_str(), 0600) != 0) throw std::runtime_error("cannot make pipe " + path);
}

void TemporaryTree::remove(const std::string& path) const {
  std::filesystem::remove_all(at(path));
}

std::string ProcessFixture::stat() const {
  return std::to_string(pid) + " (" + name + ") S " + ppid + " 1 1 0 -1 " + std::to_string(flags) +
         " 138 0 1 0 " + std::to_string(userTicks) + " " + std::to_string(systemTicks) + " 7 8 20 0 1 0 " +
         std::to_string(startTicks) + " 2990080 421 18446744073709551615 1 1 0 0 0 0 0 0 0\n";
}

void ProcessFixture::writeTo(const TemporaryTree& tree) const {
  const std::string directory = "proc/" + std::to_string(pid) + "/";
  tree.write(directory + "stat", stat());
  tree.write(directory + "statm", statm);
  tree.write(directory + "status", "Name:\tworker\nState:\tS (sleeping)\nUid:\t" + owners +
                                       "\nGid:\t5\t5\t5\t5\nVmRSS:\t  1200 kB\n" + swapLine +
                                       "Threads:\t1\n");
  tree.write(directory + "cmdline", commandLine);
}

}  // namespace tarn
