// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QDBusArgument>
#include <QList>
#include <QString>
#include <QVariantMap>

class QImage;

namespace tarn {

/// A picture as it travels over the bus: four bytes a pixel, alpha, red, green, blue, not premultiplied, rows
/// from the top without padding.
struct NotifierPixmap {
  int width = 0;
  int height = 0;
  QByteArray bytes;

  bool operator==(const NotifierPixmap&) const = default;
};

using NotifierPixmaps = QList<NotifierPixmap>;

/// A tooltip with an optional picture; `text` is markup, so it must be escaped.
struct NotifierToolTip {
  QString iconName;
  NotifierPixmaps pixmaps;
  QString title;
  QString text;

  bool operator==(const NotifierToolTip&) const = default;
};

/// An entry of a menu and what lies below it.
struct NotifierMenuLayout {
  int id = 0;
  QVariantMap properties;
  QList<NotifierMenuLayout> children;
};

/// The properties of one entry of a menu.
struct NotifierMenuProperties {
  int id = 0;
  QVariantMap properties;
};

QDBusArgument& operator<<(QDBusArgument& argument, const NotifierPixmap& pixmap);
const QDBusArgument& operator>>(const QDBusArgument& argument, NotifierPixmap& pixmap);
QDBusArgument& operator<<(QDBusArgument& argument, const NotifierToolTip& toolTip);
const QDBusArgument& operator>>(const QDBusArgument& argument, NotifierToolTip& toolTip);
QDBusArgument& operator<<(QDBusArgument& argument, const NotifierMenuLayout& layout);
const QDBusArgument& operator>>(const QDBusArgument& argument, NotifierMenuLayout& layout);
QDBusArgument& operator<<(QDBusArgument& argument, const NotifierMenuProperties& entry);
const QDBusArgument& operator>>(const QDBusArgument& argument, NotifierMenuProperties& entry);

/// Makes the types above known to the bus library; any number of times.
void registerNotifierTypes();

/// The picture in the form that the bus wants.
NotifierPixmap notifierPixmap(const QImage& picture);

}  // namespace tarn
