// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>

#include "support/temporary_tree.hpp"

namespace tarn {

/// Writes the files of the machine that tests/fixtures/linux/machines/NAME.machine describes.
void writeMachine(const TemporaryTree& tree, const std::string& name);

/// Writes the device manager's record of the volume that the tree lies on.
void writeVolumeRecord(const TemporaryTree& tree, const std::string& text);

}  // namespace tarn
