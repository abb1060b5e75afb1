// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/status_notifier/panel_item.hpp"

#include <utility>

namespace tarn {

PanelItem::PanelItem(PanelItemDesktop desktop, QObject* parent)
    : MenuBarItem(parent), desktop_(std::move(desktop)) {
  grace_.setSingleShot(true);
  grace_.setInterval(desktop_.grace);
  connect(&grace_, &QTimer::timeout, this, &PanelItem::graceEnded);
}

void PanelItem::show(const MenuBarLabel& label) {
  if (!item_) {
    start(label);
    return;
  }
  if (label == item_->label()) return;
  item_->show(label);
  if (embedded_) embedded_->show(label);
}

void PanelItem::moveTo(const QDBusConnection& bus) {
  desktop_.bus = bus;
  if (item_) start(item_->label());
}

void PanelItem::start(MenuBarLabel label) {
  host_.reset();
  item_ = std::make_unique<StatusNotifierItem>(desktop_.bus, std::move(label));
  connect(item_.get(), &StatusNotifierItem::activated, this, &PanelItem::activated);
  menu_ = std::make_unique<NotifierMenu>(desktop_.bus);
  connect(menu_.get(), &NotifierMenu::openChosen, this, &PanelItem::openRequested);
  connect(menu_.get(), &NotifierMenu::quitChosen, this, &PanelItem::quitRequested);
  // Only now that there is something to show: a panel reads it at once.
  host_ = std::make_unique<NotifierHost>(desktop_.bus, desktop_.programName);
  connect(host_.get(), &NotifierHost::watcherFound, item_.get(),
          [this](const QString& program) { item_->setHostKind(hostKind(program)); });
  connect(host_.get(), &NotifierHost::changed, this, &PanelItem::hostChanged);
  grace_.start();
}

void PanelItem::hostChanged() {
  if (host_->showsItem()) {
    grace_.stop();
    embedded_.reset();
    setPresence(Presence::shown);
  } else if (!grace_.isActive() && presence_ == Presence::shown) {
    grace_.start();
  }
}

void PanelItem::graceEnded() {
  const std::optional<bool> hasTray = desktop_.hasEmbeddingTray ? desktop_.hasEmbeddingTray() : false;
  if (hasTray == false) embedded_.reset();
  if (hasTray == true && !embedded_ && !host_->hasWatcher()) embed();
  setPresence(embedded_ ? Presence::shown : Presence::missing);
  // A tray of the older kind comes and goes without a word on the bus.
  if (desktop_.hasEmbeddingTray) grace_.start();
}

void PanelItem::embed() {
  embedded_ = std::make_unique<XembedItem>(item_->label());
  connect(embedded_.get(), &XembedItem::activated, this, &PanelItem::activated);
  connect(embedded_.get(), &XembedItem::openChosen, this, &PanelItem::openRequested);
  connect(embedded_.get(), &XembedItem::quitChosen, this, &PanelItem::quitRequested);
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
