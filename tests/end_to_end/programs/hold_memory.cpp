// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT
//
// hold_memory [--private] MEGABYTES [COMMAND...]: holds that much anonymous memory, runs COMMAND as a child,
// prints "ready" and runs until it is killed. With --private the process is not dumpable: even its user
// may not read its executable link, as with another user's process.

#include <sys/mman.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

void runAsChild(char** command) {
  if (fork() == 0) {
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    execvp(command[0], command);
    std::perror(command[0]);
    _exit(127);
  }
}

}  // namespace

int main(int argumentCount, char** arguments) {
  int next = 1;
  if (next < argumentCount && std::strcmp(arguments[next], "--private") == 0) {
    prctl(PR_SET_DUMPABLE, 0);
    ++next;
  }
  if (next >= argumentCount) {
    std::fputs("usage: hold_memory [--private] MEGABYTES [COMMAND...]\n", stderr);
    return 2;
  }
  const std::size_t megabytes = std::strtoul(arguments[next], nullptr, 10);
  const std::size_t size = megabytes << 20U;
  void* held = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (held == MAP_FAILED) {
    std::perror("hold_memory");
    return 1;
  }
  std::memset(held, 'x', size);
  if (next + 1 < argumentCount) runAsChild(arguments + next + 1);
  std::puts("ready");
  std::fflush(stdout);
  while (true) pause();
}
