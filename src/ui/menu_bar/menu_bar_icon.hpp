// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QColor>
#include <QImage>
#include <QString>

#include "monitor/presentation.hpp"

namespace tarn::MenuBarIcon {

/// The symbol in one colour on a transparent square of `pixels` × `pixels`, drawn as a 13-point semibold
/// symbol is in a bar of that height; never recoloured by the host. Transparent throughout for an unknown
/// symbol.
QImage image(const QString& symbolName, const QColor& color, int pixels);

/// The shade of a tint that stands out on a light bar and on a dark one, each at least 3:1.
QColor color(Tint tint);

}  // namespace tarn::MenuBarIcon
