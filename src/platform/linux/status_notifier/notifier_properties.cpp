// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/status_notifier/notifier_properties.hpp"

#include <QDBusObjectPath>
#include <QStringList>

#include "platform/linux/status_notifier/item_content.hpp"
#include "platform/linux/status_notifier/notifier_types.hpp"

namespace tarn {
QString notifierMenuPath() {
  return QStringLiteral("/StatusNotifierItem/Menu");
}

QString notifierTitle(const MenuBarLabel& label) {
  const QString name = QStringLiteral("Tarn");
  return label.hover.text ? QStringLiteral("%1 — %2").arg(name, *label.hover.text) : name;
}

QString notifierToolTipText(const MenuBarLabel& label) {
  QStringList lines;
  if (!label.hover.detail.isEmpty()) lines << label.hover.detail;
  if (label.hover.text) lines << QStringLiteral("Frontmost application: %1").arg(*label.hover.text);
  return lines.join(u'\n');
}

QVariant notifierPictures(const MenuBarLabel& label, HostKind kind) {
  NotifierPixmaps pictures;
  for (const int pixels : panelPictureSizes) {
    const bool wide = kind == HostKind::widePictures;
    pictures << notifierPixmap(wide ? labelledPicture(label, pixels) : circlePicture(label, pixels));
  }
  return QVariant::fromValue(pictures);
}

QVariantMap notifierProperties(const MenuBarLabel& label, HostKind kind, const QVariant& pictures) {
  const NotifierToolTip toolTip{
      QString(), {}, label.hover.verdict, notifierToolTipText(label).toHtmlEscaped()};
  QVariantMap properties{
      {QStringLiteral("Category"), QStringLiteral("SystemServices")},
      {QStringLiteral("Id"), QStringLiteral("tarn")},
      {QStringLiteral("Title"), notifierTitle(label)},
      {QStringLiteral("Status"), QStringLiteral("Active")},
      {QStringLiteral("IconName"), QString()},
      {QStringLiteral("IconPixmap"), pictures},
      {QStringLiteral("IconAccessibleDesc"), label.accessibilityText},
      {QStringLiteral("ToolTip"), QVariant::fromValue(toolTip)},
      {QStringLiteral("ItemIsMenu"), false},
      {QStringLiteral("Menu"), QVariant::fromValue(QDBusObjectPath(notifierMenuPath()))},
  };
  if (kind == HostKind::ayatanaLabel) {
    properties.insert(QStringLiteral("XAyatanaLabel"), label.text.value_or(QString()));
  }
  return properties;
}

}  // namespace tarn
