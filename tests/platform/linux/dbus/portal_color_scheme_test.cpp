// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <QDBusError>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QSignalSpy>
#include <memory>
#include <optional>
#include <utility>

#include "platform/linux/dbus/bus_client.hpp"
#include "platform/linux/dbus/fake_service.hpp"
#include "platform/linux/dbus/portals.hpp"
#include "platform/linux/dbus/private_bus.hpp"
#include "support/event_loop.hpp"
#include "ui/widgets/theme.hpp"

namespace tarn {
namespace {

using test::eventually;

const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString settings = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString colorScheme = QStringLiteral("color-scheme");

/// `value` in a D-Bus variant.
QVariant wrapped(const QVariant& value) {
  return QVariant::fromValue(QDBusVariant(value));
}

/// A portal with the setting color-scheme only. Without `reply` it never replies. PortalColorScheme calls
/// Read twice: at its start, and when it learns the owner of the portal's name.
class FakePortal final : public test::FakeService {
 public:
  FakePortal(QDBusConnection connection, std::optional<QVariant> reply)
      : FakeService(std::move(connection), QStringLiteral("org.freedesktop.portal.Desktop"), portalPath),
        reply_(std::move(reply)) {}

  void change(const QVariant& value, const QString& key = colorScheme) {
    reply_ = wrapped(wrapped(value));
    sendChange(connection(), value, key);
  }

  static void sendChange(const QDBusConnection& sender, const QVariant& value, const QString& key) {
    QDBusMessage signal = QDBusMessage::createSignal(portalPath, settings, QStringLiteral("SettingChanged"));
    signal.setArguments({appearance, key, wrapped(value)});
    sender.send(signal);
  }

  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    ++calls_;
    const bool isColorSchemeRead =
        message.member() == u"Read" && message.arguments() == QVariantList{appearance, colorScheme};
    if (!isColorSchemeRead) {
      connection.send(message.createErrorReply(QDBusError::UnknownMethod, QStringLiteral("No")));
    } else if (reply_) {
      connection.send(message.createReply(*reply_));
    }
    return true;
  }

  int calls() const { return calls_; }

 private:
  std::optional<QVariant> reply_;
  int calls_ = 0;
};

class PortalColorSchemeTest : public testing::Test {
 protected:
  bool preferenceBecomes(std::optional<ColorScheme> scheme) {
    return eventually([&] { return scheme_->preference() == scheme; });
  }

  void start() {
    scheme_ = std::make_unique<PortalColorScheme>(connection_);
    changed_ = std::make_unique<QSignalSpy>(scheme_.get(), &ColorSchemeWatcher::changed);
  }

  /// Waits until all messages to and from the watcher have been handled.
  void drainMessages() { client_.takeSignals(); }

  test::PrivateBus bus_;
  QDBusConnection connection_ = bus_.connection();
  test::BusClient client_{bus_.connection(), connection_.baseService()};
  std::unique_ptr<PortalColorScheme> scheme_;
  std::unique_ptr<QSignalSpy> changed_;
};

TEST_F(PortalColorSchemeTest, ReadsThePreference) {
  const FakePortal portal(bus_.connection(), wrapped(wrapped(1U)));
  start();
  EXPECT_EQ(scheme_->preference(), std::nullopt);
  EXPECT_TRUE(preferenceBecomes(ColorScheme::dark));
  EXPECT_EQ(changed_->size(), 1);
}

TEST_F(PortalColorSchemeTest, FollowsChanges) {
  FakePortal portal(bus_.connection(), wrapped(wrapped(2U)));
  start();
  ASSERT_TRUE(preferenceBecomes(ColorScheme::light));
  ASSERT_TRUE(eventually([&] { return portal.calls() >= 2; }));
  portal.change(1U);
  ASSERT_TRUE(preferenceBecomes(ColorScheme::dark));
  portal.change(1U);
  portal.change(2U, QStringLiteral("accent-color"));
  portal.change(0U);
  ASSERT_TRUE(preferenceBecomes(std::nullopt));
  EXPECT_EQ(changed_->size(), 3);
}

TEST_F(PortalColorSchemeTest, ReadsFromAPortalThatStartsLater) {
  start();
  drainMessages();
  const FakePortal portal(bus_.connection(), wrapped(wrapped(1U)));
  EXPECT_TRUE(preferenceBecomes(ColorScheme::dark));
}

TEST_F(PortalColorSchemeTest, KeepsThePreferenceOfAPortalThatStopped) {
  auto portal = std::make_unique<FakePortal>(bus_.connection(), wrapped(wrapped(1U)));
  start();
  ASSERT_TRUE(preferenceBecomes(ColorScheme::dark));
  portal.reset();
  drainMessages();
  EXPECT_EQ(scheme_->preference(), ColorScheme::dark);
  portal = std::make_unique<FakePortal>(bus_.connection(), wrapped(2U));
  EXPECT_TRUE(preferenceBecomes(ColorScheme::light));
}

TEST_F(PortalColorSchemeTest, TreatsUnknownAndMalformedValuesAsNoPreference) {
  const QList<QVariant> replies{wrapped(wrapped(0U)),
                                wrapped(wrapped(3U)),
                                wrapped(QStringLiteral("dark")),
                                QVariant(QStringLiteral("dark")),
                                wrapped(1),
                                wrapped(wrapped(wrapped(wrapped(wrapped(wrapped(1U))))))};
  for (const QVariant& reply : replies) {
    const FakePortal portal(bus_.connection(), reply);
    start();
    ASSERT_TRUE(eventually([&] { return portal.calls() >= 2; }));
    drainMessages();
    EXPECT_EQ(scheme_->preference(), std::nullopt);
    EXPECT_TRUE(changed_->isEmpty());
    scheme_.reset();
  }
}

TEST_F(PortalColorSchemeTest, DoesNotBlockWhenThePortalNeverReplies) {
  FakePortal portal(bus_.connection(), std::nullopt);
  start();
  ASSERT_TRUE(eventually([&] { return portal.calls() >= 1; }));
  EXPECT_EQ(scheme_->preference(), std::nullopt);
  ASSERT_TRUE(eventually([&] { return portal.calls() >= 2; }));
  portal.change(1U);
  EXPECT_TRUE(preferenceBecomes(ColorScheme::dark));
}

TEST_F(PortalColorSchemeTest, IgnoresSignalsFromOtherSenders) {
  const FakePortal portal(bus_.connection(), wrapped(wrapped(2U)));
  start();
  ASSERT_TRUE(preferenceBecomes(ColorScheme::light));
  const QDBusConnection other = bus_.connection();
  FakePortal::sendChange(other, 1U, colorScheme);
  test::BusClient(other, connection_.baseService()).takeSignals();
  drainMessages();
  EXPECT_EQ(scheme_->preference(), ColorScheme::light);
}

}  // namespace
}  // namespace tarn
