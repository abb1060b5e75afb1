// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>

#include "support/temporary_tree.hpp"

namespace tarn {

/// Writes the files of a machine, described in tests/fixtures/linux/machines/NAME.machine: a line in brackets
/// names a directory, each line below it a file and its text. A file without text stands for one whose driver
/// does not answer.
void writeMachine(const TemporaryTree& tree, const std::string& name);

/// Writes the device manager's record of the volume that the tree lies on.
void writeVolumeRecord(const TemporaryTree& tree, const std::string& text);

}  // namespace tarn
