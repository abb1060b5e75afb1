// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/status_notifier/xembed_item.hpp"

#include <QCursor>
#include <QIcon>
#include <QPixmap>
#include <QStringList>

#include "platform/linux/status_notifier/item_content.hpp"
#include "platform/linux/status_notifier/notifier_properties.hpp"

namespace tarn {

XembedItem::XembedItem(const MenuBarLabel& label, QObject* parent) : QObject(parent) {
  menu_.addAction(QStringLiteral("Open"), this, &XembedItem::openChosen);
  menu_.addAction(QStringLiteral("Quit"), this, &XembedItem::quitChosen);
  icon_.setContextMenu(&menu_);
  connect(&icon_, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
    if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::MiddleClick) {
      Q_EMIT activated(QCursor::pos());
    }
  });
  show(label);
  icon_.show();
}

void XembedItem::show(const MenuBarLabel& label) {
  QIcon icon;
  for (const int pixels : panelPictureSizes) {
    icon.addPixmap(QPixmap::fromImage(circlePicture(label, pixels)));
  }
  icon_.setIcon(icon);
  QStringList lines{label.hover.verdict};
  const QString more = notifierToolTipText(label);
  if (!more.isEmpty()) lines << more;
  icon_.setToolTip(lines.join(u'\n'));
}

}  // namespace tarn
