// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QColor>
#include <QPixmap>
#include <QRectF>
#include <QString>

class QPainter;

namespace tarn {

/// Stroke weight of a symbol, like the weight of a font.
enum class SymbolWeight { regular, semibold };

/// Draws the symbol `name`, for example "memorychip", in one colour. It is centred in `rect` and scaled to
/// the smaller side of `rect`. Symbols whose names end in ".fill" are filled, with transparent holes.
///
/// All symbols are designed on a grid of 16 units, with one stroke weight and round line ends. They are moved
/// by less than a pixel so that straight edges are on pixel boundaries, which keeps them sharp at text sizes.
///
/// Returns false and draws nothing for an unknown name. Draws nothing if `rect` is smaller than one pixel or
/// larger than 4096 pixels.
bool drawSymbol(QPainter& painter, const QString& name, const QRectF& rect, const QColor& color,
                SymbolWeight weight = SymbolWeight::regular);

/// The symbol on a transparent square of `size` points at `scale` pixels per point. Transparent for an
/// unknown name. Null if the square is smaller than one pixel, larger than 4096 pixels, or NaN.
QPixmap symbolPixmap(const QString& name, double size, const QColor& color, double scale,
                     SymbolWeight weight = SymbolWeight::regular);

}  // namespace tarn
