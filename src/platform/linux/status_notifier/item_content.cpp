// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/status_notifier/item_content.hpp"

#include <QFont>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>
#include <cmath>

#include "ui/menu_bar/menu_bar_icon.hpp"

namespace tarn {
namespace {

// The height at which panels show an item, in points: what a gap of so many points means in a picture of any
// size.
constexpr double nominalHeight = 22.0;
constexpr double gapPoints = 3.0;
constexpr double textPoints = 13.0;

}  // namespace

QImage circlePicture(const MenuBarLabel& label, int pixels) {
  return MenuBarIcon::image(label.symbolName, MenuBarIcon::color(label.tint), pixels);
}

QImage labelledPicture(const MenuBarLabel& label, int pixels) {
  if (!label.text || label.text->isEmpty()) return circlePicture(label, pixels);
  const double scale = pixels / nominalHeight;
  QFont font = QGuiApplication::font();
  font.setPixelSize(static_cast<int>(std::lround(textPoints * scale)));
  font.setWeight(QFont::DemiBold);
  const QFontMetricsF metrics(font);
  const double textLeft = pixels + gapPoints * scale;
  const int width = static_cast<int>(std::ceil(textLeft + metrics.horizontalAdvance(*label.text) + scale));

  QImage picture(width, pixels, QImage::Format_ARGB32_Premultiplied);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  painter.drawImage(0, 0, circlePicture(label, pixels));
  painter.setFont(font);
  // The picture cannot know what it lies on, so its text is as far from a light panel as from a dark one.
  painter.setPen(MenuBarIcon::color(Tint::secondary));
  painter.drawText(QRectF(textLeft, 0, width - textLeft, pixels), Qt::AlignLeft | Qt::AlignVCenter,
                   *label.text);
  return picture;
}

}  // namespace tarn
