// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QStringView>

#include "ui/symbols/symbol_sketch.hpp"

namespace tarn {

/// Adds one symbol's strokes and areas to an empty sketch.
using SymbolShape = void (*)(SymbolSketch&);

/// The shape called `name`; null for an unknown name.
SymbolShape symbolShape(QStringView name);

}  // namespace tarn
