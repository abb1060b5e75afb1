// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT
//
// application_tree: a process tree like that of a web browser. The program starts itself again through
// /proc/self/exe with "--type" options, below a zygote process. It also starts a crash handler, whose parent
// exits. Runs until it is killed.

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
