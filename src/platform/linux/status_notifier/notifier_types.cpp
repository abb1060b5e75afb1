// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/status_notifier/notifier_types.hpp"

#include <QDBusMetaType>
#include <QDBusVariant>
#include <QImage>
#include <QtEndian>

namespace tarn {

QDBusArgument& operator<<(QDBusArgument& argument, const NotifierPixmap& pixmap) {
  argument.beginStructure();
  argument << pixmap.width << pixmap.height << pixmap.bytes;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, NotifierPixmap& pixmap) {
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

QDBusArgument& operator<<(QDBusArgument& argument, const NotifierMenuLayout& layout) {
  argument.beginStructure();
  argument << layout.id << layout.properties;
  argument.beginArray(QMetaType::fromType<QDBusVariant>());
  for (const NotifierMenuLayout& child : layout.children) {
    argument << QDBusVariant(QVariant::fromValue(child));
  }
  argument.endArray();
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, NotifierMenuLayout& layout) {
  argument.beginStructure();
  argument >> layout.id >> layout.properties;
  argument.beginArray();
  layout.children.clear();
  while (!argument.atEnd()) {
    QDBusVariant child;
    argument >> child;
    layout.children << qdbus_cast<NotifierMenuLayout>(child.variant());
  }
  argument.endArray();
  argument.endStructure();
  return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const NotifierMenuProperties& entry) {
  argument.beginStructure();
  argument << entry.id << entry.properties;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, NotifierMenuProperties& entry) {
  argument.beginStructure();
  argument >> entry.id >> entry.properties;
  argument.endStructure();
  return argument;
}

void registerNotifierTypes() {
  qDBusRegisterMetaType<NotifierPixmap>();
  qDBusRegisterMetaType<NotifierPixmaps>();
  qDBusRegisterMetaType<NotifierToolTip>();
  qDBusRegisterMetaType<NotifierMenuLayout>();
  qDBusRegisterMetaType<NotifierMenuProperties>();
  qDBusRegisterMetaType<QList<NotifierMenuProperties>>();
  qDBusRegisterMetaType<QList<int>>();
}

NotifierPixmap notifierPixmap(const QImage& picture) {
  const QImage pixels = picture.convertToFormat(QImage::Format_ARGB32);
  const qsizetype rowBytes = qsizetype{pixels.width()} * 4;
  QByteArray bytes(rowBytes * pixels.height(), Qt::Uninitialized);
  for (int row = 0; row < pixels.height(); ++row) {
    qToBigEndian<quint32>(pixels.constScanLine(row), pixels.width(), bytes.data() + rowBytes * row);
  }
  return {pixels.width(), pixels.height(), bytes};
}

}  // namespace tarn
