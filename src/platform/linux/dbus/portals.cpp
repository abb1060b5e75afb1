// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/dbus/portals.hpp"

#include <QDBusPendingCallWatcher>
#include <QDBusVariant>

#include "platform/linux/dbus/desktop_portal.hpp"

namespace tarn {
namespace {

const QString settingsInterface = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString colorScheme = QStringLiteral("color-scheme");

// "Read" wraps its answer twice, a signal its value once; deeper than this nobody means it.
constexpr int deepestWrapping = 4;

std::optional<ColorScheme> wish(QVariant value) {
  const QMetaType wrapped = QMetaType::fromType<QDBusVariant>();
  for (int depth = 0; depth < deepestWrapping && value.metaType() == wrapped; ++depth) {
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
  portal_ = std::make_unique<BusName>(bus_, portalName);
  if (!bus_.isConnected()) return;
  connect(portal_.get(), &BusName::ownerChanged, this, [this](const QString& owner) {
    if (!owner.isEmpty()) read();
  });
  bus_.connect(QString(), portalPath, settingsInterface, QStringLiteral("SettingChanged"),
               {appearance, colorScheme}, QStringLiteral("ssv"), this, SLOT(settingChanged(QDBusMessage)));
  // The first question may itself start a portal, as any application's would.
  read();
}

void PortalColorScheme::read() {
  QDBusMessage question =
      QDBusMessage::createMethodCall(portalName, portalPath, settingsInterface, QStringLiteral("Read"));
  question.setArguments({appearance, colorScheme});
  auto* answer = new QDBusPendingCallWatcher(bus_.asyncCall(question), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, reading = ++readings_] {
    answer->deleteLater();
    const QDBusMessage reply = answer->reply();
    if (reading != readings_ || reply.type() != QDBusMessage::ReplyMessage) return;
    take(reply.arguments().value(0));
  });
}

void PortalColorScheme::settingChanged(const QDBusMessage& message) {
  if (portal_->owner().isEmpty() || message.service() != portal_->owner()) return;
  ++readings_;
  take(message.arguments().value(2));
}

void PortalColorScheme::take(const QVariant& value) {
  const std::optional<ColorScheme> preference = wish(value);
  if (preference == preference_) return;
  preference_ = preference;
  Q_EMIT changed();
}

}  // namespace tarn
