// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/status_notifier/notifier_types.hpp"

#include <QDBusMetaType>
#include <QDBusVariant>
#include <QImage>
#include <QtEndian>

namespace tarn {

QDBusArgument& operator<<(QDBusArgument& argument, const IconPixmap& pixmap) {
  argument.beginStructure();
  argument << pixmap.width << pixmap.height << pixmap.bytes;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, IconPixmap& pixmap) {
  argument.beginStructure();
  argument >> pixmap.width >> pixmap.height >> pixmap.bytes;
  argument.endStructure();
  return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const NotifierToolTip& toolTip) {
  argument.beginStructure();
  argument << toolTip.iconName << toolTip.pixmaps << toolTip.title << toolTip.text;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, NotifierToolTip& toolTip) {
  argument.beginStructure();
  argument >> toolTip.iconName >> toolTip.pixmaps >> toolTip.title >> toolTip.text;
  argument.endStructure();
  return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuLayout& layout) {
  argument.beginStructure();
  argument << layout.id << layout.properties;
  argument.beginArray(QMetaType::fromType<QDBusVariant>());
  for (const DBusMenuLayout& child : layout.children) {
    argument << QDBusVariant(QVariant::fromValue(child));
  }
  argument.endArray();
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuLayout& layout) {
  argument.beginStructure();
  argument >> layout.id >> layout.properties;
  argument.beginArray();
  layout.children.clear();
  while (!argument.atEnd()) {
    QDBusVariant child;
    argument >> child;
    layout.children << qdbus_cast<DBusMenuLayout>(child.variant());
  }
  argument.endArray();
  argument.endStructure();
  return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuItem& item) {
  argument.beginStructure();
  argument << item.id << item.properties;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuItem& item) {
  argument.beginStructure();
  argument >> item.id >> item.properties;
  argument.endStructure();
  return argument;
}

void registerNotifierTypes() {
  qDBusRegisterMetaType<IconPixmap>();
  qDBusRegisterMetaType<IconPixmaps>();
  qDBusRegisterMetaType<NotifierToolTip>();
  qDBusRegisterMetaType<DBusMenuLayout>();
  qDBusRegisterMetaType<DBusMenuItem>();
  qDBusRegisterMetaType<QList<DBusMenuItem>>();
  qDBusRegisterMetaType<QList<int>>();
}

IconPixmap iconPixmap(const QImage& image) {
  const QImage pixels = image.convertToFormat(QImage::Format_ARGB32);
  const qsizetype rowBytes = qsizetype{pixels.width()} * 4;
  QByteArray bytes(rowBytes * pixels.height(), Qt::Uninitialized);
  for (int row = 0; row < pixels.height(); ++row) {
    qToBigEndian<quint32>(pixels.constScanLine(row), pixels.width(), bytes.data() + rowBytes * row);
  }
  return {pixels.width(), pixels.height(), bytes};
}

}  // namespace tarn
