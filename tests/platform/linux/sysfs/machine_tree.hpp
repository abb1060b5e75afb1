// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>

#include "support/temporary_tree.hpp"

namespace tarn {

/// Writes the files of the machine that tests/fixtures/linux/machines/NAME.machine describes.
void writeMachine(const TemporaryTree& tree, const std::string& name);

/// Writes the udev database record of the device that contains the tree.
void writeVolumeRecord(const TemporaryTree& tree, const std::string& text);

}  // namespace tarn
