// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/status_notifier/panel_item.hpp"

#include <QCursor>
#include <QIcon>
#include <QMenu>
#include <QPixmap>
#include <QStringList>
#include <QSystemTrayIcon>
#include <utility>

#include "platform/linux/status_notifier/status_notifier_item.hpp"

namespace tarn {

/// The icon in an XEmbed tray, which Qt docks there (System Tray Protocol, freedesktop.org). Create it only
/// while there is no StatusNotifierWatcher: Qt chooses between the two protocols when it creates the first
/// QSystemTrayIcon, and does not change that later. Reports clicks by the signals of `item`.
class XembedItem {
 public:
  XembedItem(const MenuBarLabel& label, PanelItem* item) {
    menu_.addAction(QStringLiteral("Open"), item, &PanelItem::openRequested);
    menu_.addAction(QStringLiteral("Quit"), item, &PanelItem::quitRequested);
    icon_.setContextMenu(&menu_);
    QObject::connect(&icon_, &QSystemTrayIcon::activated, item,
                     [item](QSystemTrayIcon::ActivationReason reason) {
                       if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::MiddleClick) {
                         Q_EMIT item->activated(QCursor::pos());
                       }
                     });
    show(label);
    icon_.show();
  }

  /// Shows the circle; the text is in the tooltip.
  void show(const MenuBarLabel& label) {
    QIcon icon;
    for (const int pixels : panelIconSizes) icon.addPixmap(QPixmap::fromImage(circleIcon(label, pixels)));
    icon_.setIcon(icon);
    QStringList lines{label.toolTip.status};
    const QString figures = itemToolTipText(label);
    if (!figures.isEmpty()) lines << figures;
    icon_.setToolTip(lines.join(u'\n'));
  }

 private:
  QMenu menu_;
  QSystemTrayIcon icon_;
};

PanelItem::PanelItem(PanelItemDesktop desktop, QObject* parent)
    : MenuBarItem(parent), desktop_(std::move(desktop)) {
  grace_.setSingleShot(true);
  grace_.setInterval(desktop_.grace);
  connect(&grace_, &QTimer::timeout, this, &PanelItem::graceExpired);
}

PanelItem::~PanelItem() = default;

void PanelItem::show(const MenuBarLabel& label) {
  if (!item_) {
    start(label);
    return;
  }
  if (label == item_->label()) return;
  item_->show(label);
  if (xembedItem_) xembedItem_->show(label);
}

void PanelItem::moveTo(const QDBusConnection& bus) {
  desktop_.bus = bus;
  if (item_) start(item_->label());
}

void PanelItem::start(MenuBarLabel label) {
  registration_.reset();
  item_ = std::make_unique<StatusNotifierItem>(desktop_.bus, std::move(label));
  connect(item_.get(), &StatusNotifierItem::activated, this, &PanelItem::activated);
  menu_ = std::make_unique<DBusMenu>(desktop_.bus);
  connect(menu_.get(), &DBusMenu::openClicked, this, &PanelItem::openRequested);
  connect(menu_.get(), &DBusMenu::quitClicked, this, &PanelItem::quitRequested);
  if (desktop_.releaseMemory) {
    connect(item_.get(), &StatusNotifierItem::burstEnded, this, desktop_.releaseMemory);
    connect(menu_.get(), &DBusMenu::burstEnded, this, desktop_.releaseMemory);
  }
  // Created after the item, because panels read the item as soon as it is registered.
  registration_ = std::make_unique<WatcherRegistration>(desktop_.bus, desktop_.programName);
  connect(registration_.get(), &WatcherRegistration::watcherFound, item_.get(),
          &StatusNotifierItem::setHostKind);
  connect(registration_.get(), &WatcherRegistration::changed, this, &PanelItem::registrationChanged);
  grace_.start();
}

void PanelItem::registrationChanged() {
  if (registration_->showsItem()) {
    grace_.stop();
    xembedItem_.reset();
    setPresence(Presence::shown);
  } else if (!grace_.isActive() && presence_ == Presence::shown) {
    grace_.start();
  }
}

void PanelItem::graceExpired() {
  const std::optional<bool> hasTray = desktop_.hasXembedTray ? desktop_.hasXembedTray() : false;
  if (hasTray == false) xembedItem_.reset();
  if (hasTray == true && !xembedItem_ && !registration_->hasWatcher()) {
    xembedItem_ = std::make_unique<XembedItem>(item_->label(), this);
  }
  setPresence(xembedItem_ ? Presence::shown : Presence::missing);
  // No D-Bus signal reports that an XEmbed tray appears or disappears: check again later.
  if (desktop_.hasXembedTray) grace_.start();
}

void PanelItem::setPresence(Presence presence) {
  if (presence == presence_) return;
  presence_ = presence;
  if (presence == Presence::shown) {
    Q_EMIT hostAppeared();
  } else {
    Q_EMIT hostMissing();
  }
}

}  // namespace tarn
