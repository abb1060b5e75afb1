// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QImage>

#include "ui/menu_bar_label.hpp"

namespace tarn {

/// The label's circle on a transparent square of `pixels`; transparent throughout for an unknown symbol.
QImage circlePicture(const MenuBarLabel& label, int pixels);

/// The circle and the label's text beside it, `pixels` high and as wide as it needs; the circle alone when
/// there is no text.
QImage labelledPicture(const MenuBarLabel& label, int pixels);

}  // namespace tarn
