// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/widgets/glyph_view.hpp"

#include <QPainter>

namespace tarn {

GlyphView::GlyphView(double size, SymbolWeight weight, QWidget* parent)
    : QWidget(parent), size_(size), weight_(weight) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
}

void GlyphView::setSymbol(const QString& name, Color color) {
  if (name == name_ && color == color_) return;
  name_ = name;
  color_ = color;
  update();
}

void GlyphView::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QRectF frame((width() - size_) / 2, (height() - size_) / 2, size_, size_);
  const Theme& theme = themeOf(*this);
  drawSymbol(painter, name_, frame, std::visit([&](auto color) { return theme.color(color); }, color_),
             weight_);
}

}  // namespace tarn
