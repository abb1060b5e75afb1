// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QImage>
#include <array>

#include "ui/menu_bar/menu_bar_label.hpp"

namespace tarn {

/// Heights in pixels that panels ask for, from a small one at normal density to a large one at double
/// density; a panel that finds its own size need not scale.
inline constexpr std::array panelPictureSizes = {16, 22, 24, 32, 48, 64};

/// The label's circle on a transparent square of `pixels`; transparent throughout for an unknown symbol.
QImage circlePicture(const MenuBarLabel& label, int pixels);

/// The circle and the label's text beside it, `pixels` high and as wide as it needs; the circle alone when
/// there is no text.
QImage labelledPicture(const MenuBarLabel& label, int pixels);

}  // namespace tarn
