// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>

#include "support/temporary_tree.hpp"

namespace tarn {

/// Writes the files described in tests/fixtures/linux/machines/NAME.machine: a line in brackets names a
/// directory, each line "FILE = TEXT" below it a file in this directory. An empty file stands for an
/// attribute that cannot be read.
void writeMachine(const TemporaryTree& tree, const std::string& name);

/// Writes the udev database record of the device that contains the tree.
void writeVolumeRecord(const TemporaryTree& tree, const std::string& text);

}  // namespace tarn
