// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <chrono>

#include "app/platform.hpp"

namespace tarn {

/// Opens pages through the desktop portal. A browser that Tarn started itself would be its child, and as
/// restricted as Tarn: without a network it is of no use. Where no portal opens the page, `otherwise` does.
/// Main thread.
class PortalUrlOpener final : public QObject {
 public:
  /// A portal that has not answered within `patience` is not waited for any longer.
  PortalUrlOpener(QDBusConnection bus, UrlOpener otherwise,
                  std::chrono::milliseconds patience = std::chrono::seconds(10));

  /// Asks the portal; returns at once.
  void open(const QString& page);

  /// Asks the portal on another bus from now on, the former being gone.
  void moveTo(const QDBusConnection& bus) { bus_ = bus; }

 private:
  QDBusConnection bus_;
  UrlOpener otherwise_;
  std::chrono::milliseconds patience_;
};

}  // namespace tarn
