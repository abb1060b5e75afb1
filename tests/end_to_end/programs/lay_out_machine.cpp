// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT
//
// lay_out_machine DESCRIPTION DIRECTORY: writes the files of a machine description below DIRECTORY.

#include <cstdio>
#include <exception>

#include "support/machine_description.hpp"

int main(int argumentCount, char** arguments) {
  if (argumentCount != 3) {
    std::fputs("usage: lay_out_machine DESCRIPTION DIRECTORY\n", stderr);
    return 2;
  }
  try {
    tarn::layOutMachine(arguments[1], arguments[2]);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "lay_out_machine: %s\n", error.what());
    return 1;
  }
}
