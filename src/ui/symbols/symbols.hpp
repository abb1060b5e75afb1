// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QColor>
#include <QPixmap>
#include <QRectF>
#include <QString>

class QPainter;

namespace tarn {

/// Stroke weight of a symbol, as with text.
enum class SymbolWeight { regular, semibold };

/// Draws the symbol `name` (for example "memorychip") in one colour, centred in `rect`, scaled to its smaller
/// side. Every symbol lives on a 16-unit grid with one stroke weight and round ends; names that end in
/// ".fill" are filled, and their holes are see-through. The symbol is moved by less than a pixel, and its
/// straight edges put on pixel boundaries, so that it stays crisp at text sizes. Returns false, and draws
/// nothing, for an unknown name; a known one in a rectangle under one pixel, or above 4096, draws nothing
/// either.
bool drawSymbol(QPainter& painter, const QString& name, const QRectF& rect, const QColor& color,
                SymbolWeight weight = SymbolWeight::regular);

/// The symbol on a transparent square of `size` points at `scale` pixels per point; fully transparent for an
/// unknown name. Null when that square is under one pixel, above 4096 pixels, or not a number.
QPixmap symbolPixmap(const QString& name, double size, const QColor& color, double scale,
                     SymbolWeight weight = SymbolWeight::regular);

}  // namespace tarn
