// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Two interfaces of xdg-desktop-portal, "org.freedesktop.portal.Desktop" on the session bus.

#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QVariant>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>

#include "platform/linux/dbus/session_bus.hpp"
#include "ui/widgets/theme.hpp"

namespace tarn {

/// Reads the color scheme from org.freedesktop.portal.Settings and follows its changes. Never blocks. Main
/// thread.
class PortalColorScheme final : public ColorSchemeWatcher {
  Q_OBJECT

 public:
  explicit PortalColorScheme(const QDBusConnection& bus, QObject* parent = nullptr);

  std::optional<ColorScheme> preference() const override { return preference_; }

  /// Follows the portal on `bus`, which replaces the former one. The last preference stays valid until the
  /// portal on the new bus replies.
  void moveTo(const QDBusConnection& bus);

 private Q_SLOTS:
  void settingChanged(const QDBusMessage& message);

 private:
  void read();
  void setPreference(const QVariant& value);

  QDBusConnection bus_;
  std::unique_ptr<BusNameWatcher> portal_;
  std::optional<ColorScheme> preference_;
  int latestRead_ = 0;  ///< the number of the last Read call; replies to earlier ones are ignored
};

/// Opens URLs through org.freedesktop.portal.OpenURI. A browser that Tarn started itself would inherit Tarn's
/// sandbox, which has no network. Main thread.
class PortalUrlOpener final : public QObject {
 public:
  using Fallback = std::function<void(const QString& url)>;

  /// `fallback` is called for each URL that the portal refuses or does not answer within `timeout`.
  PortalUrlOpener(QDBusConnection bus, Fallback fallback,
                  std::chrono::milliseconds timeout = std::chrono::seconds(10));

  /// Sends the request and returns. Without a bus the fallback is called before this returns.
  void open(const QString& url);

  /// Uses the portal on `bus` from now on.
  void moveTo(const QDBusConnection& bus) { bus_ = bus; }

 private:
  QDBusConnection bus_;
  Fallback fallback_;
  std::chrono::milliseconds timeout_;
};

}  // namespace tarn
