// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT
//
// application_tree: the processes that an application on a browser's engine consists of. They are its own
// program again, with a "--type", started through /proc/self/exe, below one that forks them all; and a
// program beside it that is to see it crash, which is nobody's child. Stays until it is ended.

#include <sys/prctl.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

[[noreturn]] void run(const char* program, const char* type) {
  execl(program, program, type, nullptr);
  std::perror(program);
  _exit(127);
}

void startChild(const char* type) {
  if (fork() == 0) {
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    run("/proc/self/exe", type);
  }
}

void startOrphan(const std::string& program) {
  if (fork() != 0) return;
  setsid();
  if (fork() == 0) run(program.c_str(), "--monitor-self");
  _exit(0);
}

}  // namespace

int main(int argumentCount, char** arguments) {
  const char* const type = argumentCount > 1 ? arguments[1] : "";
  if (std::strcmp(type, "") == 0) {
    const std::string program = arguments[0];
    startOrphan(program.substr(0, program.rfind('/')) + "/crash_handler");
    startChild("--type=zygote");
    startChild("--type=gpu-process");
  } else if (std::strcmp(type, "--type=zygote") == 0) {
    startChild("--type=renderer");
    startChild("--type=utility");
  }
  while (true) pause();
}
