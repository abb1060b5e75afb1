// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariant>
#include <memory>
#include <optional>

#include "platform/linux/dbus/bus_name.hpp"
#include "ui/widgets/color_scheme.hpp"

namespace tarn {

/// The colour scheme as the desktop portal's settings have it, read without waiting and followed from then
/// on.
class PortalColorScheme final : public ColorSchemeWatcher {
  Q_OBJECT

 public:
  explicit PortalColorScheme(const QDBusConnection& bus, QObject* parent = nullptr);

  std::optional<ColorScheme> preference() const override { return preference_; }

  /// Follows the portal on another bus, the former being gone. Until it answers its last word counts.
  void moveTo(const QDBusConnection& bus);

 private Q_SLOTS:
  void settingChanged(const QDBusMessage& message);

 private:
  void read();
  void take(const QVariant& value);

  QDBusConnection bus_;
  std::unique_ptr<BusName> portal_;
  std::optional<ColorScheme> preference_;
  int readings_ = 0;  // how many readings began, so that an overtaken answer is known as such
};

}  // namespace tarn
