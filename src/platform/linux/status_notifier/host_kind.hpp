// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

namespace tarn {

/// How a panel shows text beside an item's circle.
enum class HostKind {
  plain,         ///< not at all: wide pictures are squeezed into a square, so text lives in title and tooltip
  widePictures,  ///< pictures keep their proportions, so text can be part of them
  ayatanaLabel,  ///< the label property of its own; elsewhere its mere presence can replace the picture
};

/// The kind of the panel that runs as the program `processName`.
HostKind hostKind(const QString& processName);

/// The name of the program that process `pid` runs: its executable's, else the kernel's name for it; blank
/// when there is no such process.
QString runningProgramName(unsigned pid);

}  // namespace tarn
