// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/dbus/portal_url_opener.hpp"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QVariantMap>
#include <utility>

#include "platform/linux/dbus/desktop_portal.hpp"

namespace tarn {

PortalUrlOpener::PortalUrlOpener(QDBusConnection bus, UrlOpener otherwise, std::chrono::milliseconds patience)
    : bus_(std::move(bus)), otherwise_(std::move(otherwise)), patience_(patience) {}

void PortalUrlOpener::open(const QString& page) {
  // A call on a bus that was never reached is never answered, not even by an error.
  if (!bus_.isConnected()) {
    otherwise_(page);
    return;
  }
  QDBusMessage request = QDBusMessage::createMethodCall(
      portalName, portalPath, QStringLiteral("org.freedesktop.portal.OpenURI"), QStringLiteral("OpenURI"));
  const QString parentWindow;  // none: nothing has to be asked above the popover
  request.setArguments({parentWindow, page, QVariantMap()});
  auto* answer =
      new QDBusPendingCallWatcher(bus_.asyncCall(request, static_cast<int>(patience_.count())), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, page] {
    answer->deleteLater();
    if (answer->isError()) otherwise_(page);
  });
}

}  // namespace tarn
