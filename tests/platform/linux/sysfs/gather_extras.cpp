// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// gather_extras MACHINE COUNT: reads the extras of a described machine COUNT times. gathering_cost_test
// counts its system calls.

#include <cstdlib>

#include "extras/extras_reader.hpp"
#include "platform/linux/sysfs/linux_extras_port.hpp"
#include "platform/linux/sysfs/machine_tree.hpp"

int main(int argumentCount, char** arguments) {
  if (argumentCount != 3) return 2;
  const tarn::TemporaryTree tree;
  tarn::writeMachine(tree, arguments[1]);
  tarn::writeVolumeRecord(tree, "E:ID_FS_LABEL_ENC=Data\n");
  const tarn::ExtrasReader reader(tarn::linuxExtrasPort(tree.roots()));
  double celsius = 0;
  for (int remaining = std::atoi(arguments[2]); remaining > 0; --remaining) {
    celsius = reader.read().temperatureCelsius.value_or(0);
    static_cast<void>(reader.thermalState());
  }
  return celsius > 0 ? 0 : 1;
}
