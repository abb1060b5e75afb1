// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/status_notifier/item_content.hpp"

#include <QDBusObjectPath>
#include <QFont>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>
#include <QStringList>
#include <cmath>

#include "platform/linux/status_notifier/notifier_types.hpp"
#include "ui/menu_bar/menu_bar_label.hpp"

namespace tarn {
namespace {

// Sizes are given in points for an icon of this height and scale with the icon.
constexpr double nominalHeight = 22.0;
constexpr double gapPoints = 3.0;
constexpr double textPoints = 13.0;

}  // namespace

QImage circleIcon(const MenuBarLabel& label, int pixels) {
  return MenuBarIcon::image(label.symbolName, MenuBarIcon::color(label.tint), pixels);
}

QImage labelledIcon(const MenuBarLabel& label, int pixels) {
  if (!label.text || label.text->isEmpty()) return circleIcon(label, pixels);
  const double scale = pixels / nominalHeight;
  QFont font = QGuiApplication::font();
  font.setPixelSize(static_cast<int>(std::lround(textPoints * scale)));
  font.setWeight(QFont::DemiBold);
  const QFontMetricsF metrics(font);
  const double textLeft = pixels + gapPoints * scale;
  const int width = static_cast<int>(std::ceil(textLeft + metrics.horizontalAdvance(*label.text) + scale));

  QImage image(width, pixels, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.drawImage(0, 0, circleIcon(label, pixels));
  painter.setFont(font);
  // The panel's background is unknown: this color contrasts with light and with dark panels.
  painter.setPen(MenuBarIcon::color(Tint::secondary));
  painter.drawText(QRectF(textLeft, 0, width - textLeft, pixels), Qt::AlignLeft | Qt::AlignVCenter,
                   *label.text);
  return image;
}

QString itemTitle(const MenuBarLabel& label) {
  const QString name = QStringLiteral("Tarn");
  return label.toolTip.footprint ? QStringLiteral("%1 — %2").arg(name, *label.toolTip.footprint) : name;
}

QString itemToolTipText(const MenuBarLabel& label) {
  QStringList lines;
  if (!label.toolTip.detail.isEmpty()) lines << label.toolTip.detail;
  if (label.toolTip.footprint)
    lines << QStringLiteral("Frontmost application: %1").arg(*label.toolTip.footprint);
  return lines.join(u'\n');
}

QVariant itemIconPixmaps(const MenuBarLabel& label, HostKind kind) {
  IconPixmaps pixmaps;
  for (const int pixels : panelIconSizes) {
    const bool isWide = kind == HostKind::wideIcons;
    pixmaps << iconPixmap(isWide ? labelledIcon(label, pixels) : circleIcon(label, pixels));
  }
  return QVariant::fromValue(pixmaps);
}

// The StatusNotifierItem specification describes all of these, except for two extensions: IconAccessibleDesc
// (a text for assistive technology) and XAyatanaLabel (a text beside the icon), both from AppIndicator.
QVariantMap itemProperties(const MenuBarLabel& label, HostKind kind, const QVariant& iconPixmaps) {
  const NotifierToolTip toolTip{QString(), {}, label.toolTip.status, itemToolTipText(label).toHtmlEscaped()};
  QVariantMap properties{
      {QStringLiteral("Category"), QStringLiteral("SystemServices")},
      {QStringLiteral("Id"), QStringLiteral("tarn")},
      {QStringLiteral("Title"), itemTitle(label)},
      {QStringLiteral("Status"), QStringLiteral("Active")},
      {QStringLiteral("IconName"), QString()},
      {QStringLiteral("IconPixmap"), iconPixmaps},
      {QStringLiteral("IconAccessibleDesc"), label.accessibilityText},
      {QStringLiteral("ToolTip"), QVariant::fromValue(toolTip)},
      {QStringLiteral("ItemIsMenu"), false},
      {QStringLiteral("Menu"), QVariant::fromValue(QDBusObjectPath(itemMenuPath()))},
  };
  // With other panels the presence of this property can replace the icon.
  if (kind == HostKind::ayatanaLabel) {
    properties.insert(QStringLiteral("XAyatanaLabel"), label.text.value_or(QString()));
  }
  return properties;
}

QString itemMenuPath() {
  return QStringLiteral("/StatusNotifierItem/Menu");
}

}  // namespace tarn
