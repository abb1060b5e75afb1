// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/dbus/portals.hpp"

#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QLatin1String>
#include <QVariantMap>
#include <utility>

namespace tarn {
namespace {

constexpr QLatin1String portalService("org.freedesktop.portal.Desktop");
constexpr QLatin1String portalPath("/org/freedesktop/portal/desktop");

// org.freedesktop.portal.Settings:
//   Read(s namespace, s key) -> v     wraps the value in a second variant
//   SettingChanged(s namespace, s key, v value)
// "color-scheme" of "org.freedesktop.appearance" is a uint32: 0 no preference, 1 dark, 2 light; other values
// count as 0.
const QString settingsInterface = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString colorScheme = QStringLiteral("color-scheme");

std::optional<ColorScheme> parseColorScheme(QVariant value) {
  constexpr int maxNesting = 4;  // of variants
  const QMetaType variant = QMetaType::fromType<QDBusVariant>();
  for (int depth = 0; depth < maxNesting && value.metaType() == variant; ++depth) {
    value = value.value<QDBusVariant>().variant();
  }
  if (value.metaType() != QMetaType::fromType<uint>()) return std::nullopt;
  switch (value.toUInt()) {
    case 1:
      return ColorScheme::dark;
    case 2:
      return ColorScheme::light;
    default:
      return std::nullopt;
  }
}

}  // namespace

PortalColorScheme::PortalColorScheme(const QDBusConnection& bus, QObject* parent)
    : ColorSchemeWatcher(parent), bus_(bus) {
  moveTo(bus);
}

void PortalColorScheme::moveTo(const QDBusConnection& bus) {
  bus_ = bus;
  portal_ = std::make_unique<BusNameWatcher>(bus_, portalService);
  if (!bus_.isConnected()) return;
  connect(portal_.get(), &BusNameWatcher::ownerChanged, this, [this](const QString& owner) {
    if (!owner.isEmpty()) read();
  });
  // The subscription names no sender, for the reason given in BusNameWatcher; settingChanged() checks the
  // sender.
  bus_.connect(QString(), portalPath, settingsInterface, QStringLiteral("SettingChanged"),
               {appearance, colorScheme}, QStringLiteral("ssv"), this, SLOT(settingChanged(QDBusMessage)));
  // A portal that does not run yet is started by this call (D-Bus activation).
  read();
}

void PortalColorScheme::read() {
  QDBusMessage call =
      QDBusMessage::createMethodCall(portalService, portalPath, settingsInterface, QStringLiteral("Read"));
  call.setArguments({appearance, colorScheme});
  auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(call), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, number = ++latestRead_] {
    watcher->deleteLater();
    const QDBusMessage reply = watcher->reply();
    if (number != latestRead_ || reply.type() != QDBusMessage::ReplyMessage) return;
    setPreference(reply.arguments().value(0));
  });
}

void PortalColorScheme::settingChanged(const QDBusMessage& message) {
  if (portal_->owner().isEmpty() || message.service() != portal_->owner()) return;
  ++latestRead_;  // a reply that is still pending is older than this signal
  setPreference(message.arguments().value(2));
}

void PortalColorScheme::setPreference(const QVariant& value) {
  const std::optional<ColorScheme> preference = parseColorScheme(value);
  if (preference == preference_) return;
  preference_ = preference;
  Q_EMIT changed();
}

PortalUrlOpener::PortalUrlOpener(QDBusConnection bus, Fallback fallback, std::chrono::milliseconds timeout)
    : bus_(std::move(bus)), fallback_(std::move(fallback)), timeout_(timeout) {}

void PortalUrlOpener::open(const QString& url) {
  // On a connection that was never established, Qt does not complete a call, not even with an error.
  if (!bus_.isConnected()) {
    fallback_(url);
    return;
  }
  // org.freedesktop.portal.OpenURI: OpenURI(s parent_window, s uri, a{sv} options) -> o
  QDBusMessage call = QDBusMessage::createMethodCall(
      portalService, portalPath, QStringLiteral("org.freedesktop.portal.OpenURI"), QStringLiteral("OpenURI"));
  const QString noParentWindow;  // dialogs of the portal are not placed above the popover
  call.setArguments({noParentWindow, url, QVariantMap()});
  auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(call, static_cast<int>(timeout_.count())), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, url] {
    watcher->deleteLater();
    if (watcher->isError()) fallback_(url);
  });
}

}  // namespace tarn
