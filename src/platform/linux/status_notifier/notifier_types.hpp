// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Types that are sent over D-Bus: of the StatusNotifierItem specification (freedesktop.org) and of
// com.canonical.dbusmenu. The D-Bus signature of each is given.

#pragma once

#include <QByteArray>
#include <QDBusArgument>
#include <QList>
#include <QString>
#include <QVariantMap>

class QImage;

namespace tarn {

/// An icon, (iiay): width, height, pixels. A pixel is a 32-bit ARGB value in network byte order, not
/// premultiplied; rows go from top to bottom without padding.
struct IconPixmap {
  int width = 0;
  int height = 0;
  QByteArray bytes;

  bool operator==(const IconPixmap&) const = default;
};

using IconPixmaps = QList<IconPixmap>;

/// The property ToolTip, (sa(iiay)ss): icon name, icons, title, text. `text` is markup.
struct NotifierToolTip {
  QString iconName;
  IconPixmaps pixmaps;
  QString title;
  QString text;

  bool operator==(const NotifierToolTip&) const = default;
};

/// A menu item with the items below it, (ia{sv}av): id, properties, children. A child is a variant that holds
/// the same structure.
struct DBusMenuLayout {
  int id = 0;
  QVariantMap properties;
  QList<DBusMenuLayout> children;
};

/// One menu item without its children, (ia{sv}): id, properties.
struct DBusMenuItem {
  int id = 0;
  QVariantMap properties;
};

QDBusArgument& operator<<(QDBusArgument& argument, const IconPixmap& pixmap);
const QDBusArgument& operator>>(const QDBusArgument& argument, IconPixmap& pixmap);
QDBusArgument& operator<<(QDBusArgument& argument, const NotifierToolTip& toolTip);
const QDBusArgument& operator>>(const QDBusArgument& argument, NotifierToolTip& toolTip);
QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuLayout& layout);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuLayout& layout);
QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuItem& item);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuItem& item);

/// Registers the types above with Qt D-Bus. Idempotent.
void registerNotifierTypes();

/// Converts an image of any format.
IconPixmap iconPixmap(const QImage& image);

}  // namespace tarn
