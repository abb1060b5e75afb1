// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "support/idle_processes.hpp"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <system_error>

namespace tarn {

IdleProcesses::IdleProcesses(std::size_t count) {
  pids_.reserve(count);
  while (pids_.size() < count) {
    const pid_t pid = fork();
    if (pid < 0) throw std::system_error(errno, std::generic_category(), "fork");
    if (pid > 0) {
      pids_.push_back(pid);
      continue;
    }
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    while (true) pause();
  }
}

IdleProcesses::~IdleProcesses() {
  for (const pid_t pid : pids_) kill(pid, SIGKILL);
  for (const pid_t pid : pids_) waitpid(pid, nullptr, 0);
}

}  // namespace tarn
