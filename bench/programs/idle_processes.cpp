// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// idle_processes COUNT: starts COUNT idle processes, prints "ready", and waits. They exit when it exits.

#include "support/idle_processes.hpp"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

int main(int argumentCount, char** arguments) {
  if (argumentCount != 2) return 2;
  const tarn::IdleProcesses processes(std::strtoul(arguments[1], nullptr, 10));
  std::puts("ready");
  std::fflush(stdout);
  while (true) pause();
}
