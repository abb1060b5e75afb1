// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/widgets/color_scheme.hpp"

#include <gtest/gtest.h>

#include <QDBusError>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QSignalSpy>
#include <memory>
#include <optional>
#include <utility>

#include "platform/linux/dbus/bus_client.hpp"
#include "platform/linux/dbus/portals.hpp"
#include "platform/linux/dbus/private_bus.hpp"
#include "platform/linux/linux_platform.hpp"
#include "support/event_loop.hpp"

namespace tarn {
namespace {

using test::eventually;

const QString portalName = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString settings = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString colorScheme = QStringLiteral("color-scheme");

QVariant wrapped(const QVariant& value) {
  return QVariant::fromValue(QDBusVariant(value));
}

// A portal that knows this one setting, or (without an answer) never says anything.
class FakePortal final : public QDBusVirtualObject {
 public:
  FakePortal(QDBusConnection connection, std::optional<QVariant> answer)
      : connection_(std::move(connection)), answer_(std::move(answer)) {
    connection_.registerVirtualObject(portalPath, this);
    connection_.registerService(portalName);
  }

  ~FakePortal() override {
    connection_.unregisterService(portalName);
    connection_.unregisterObject(portalPath);
  }
  Q_DISABLE_COPY_MOVE(FakePortal)

  void change(const QVariant& value, const QString& key = colorScheme) {
    answer_ = wrapped(wrapped(value));
    sendChange(connection_, value, key);
  }

  static void sendChange(const QDBusConnection& from, const QVariant& value, const QString& key) {
    QDBusMessage signal = QDBusMessage::createSignal(portalPath, settings, QStringLiteral("SettingChanged"));
    signal.setArguments({appearance, key, wrapped(value)});
    from.send(signal);
  }

  QString introspect(const QString& /*path*/) const override { return {}; }

  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    ++questions_;
    const bool known =
        message.member() == u"Read" && message.arguments() == QVariantList{appearance, colorScheme};
    if (!known) {
      connection.send(message.createErrorReply(QDBusError::UnknownMethod, QStringLiteral("No")));
    } else if (answer_) {
      connection.send(message.createReply(*answer_));
    }
    return true;
  }

  int questions() const { return questions_; }

 private:
  QDBusConnection connection_;
  std::optional<QVariant> answer_;
  int questions_ = 0;
};

class ColorSchemeOnABus : public testing::Test {
 protected:
  bool becomes(std::optional<ColorScheme> scheme) {
    return eventually([&] { return scheme_->preference() == scheme; });
  }

  void start() {
    scheme_ = std::make_unique<PortalColorScheme>(connection_);
    changed_ = std::make_unique<QSignalSpy>(scheme_.get(), &ColorSchemeWatcher::changed);
  }

  void settle() { client_.takeSignals(); }

  test::PrivateBus bus_;
  QDBusConnection connection_ = bus_.connection();
  test::BusClient client_{bus_.connection(), connection_.baseService()};
  std::unique_ptr<PortalColorScheme> scheme_;
  std::unique_ptr<QSignalSpy> changed_;
};

TEST_F(ColorSchemeOnABus, ReadsWhatThePortalSays) {
  const FakePortal portal(bus_.connection(), wrapped(wrapped(1U)));
  start();
  EXPECT_EQ(scheme_->preference(), std::nullopt);
  EXPECT_TRUE(becomes(ColorScheme::dark));
  EXPECT_EQ(changed_->size(), 1);
}

TEST_F(ColorSchemeOnABus, FollowsChanges) {
  FakePortal portal(bus_.connection(), wrapped(wrapped(2U)));
  start();
  ASSERT_TRUE(becomes(ColorScheme::light));
  ASSERT_TRUE(eventually([&] { return portal.questions() >= 2; }));
  portal.change(1U);
  ASSERT_TRUE(becomes(ColorScheme::dark));
  portal.change(1U);
  portal.change(2U, QStringLiteral("accent-color"));
  portal.change(0U);
  ASSERT_TRUE(becomes(std::nullopt));
  EXPECT_EQ(changed_->size(), 3);
}

TEST_F(ColorSchemeOnABus, ReadsAPortalThatStartsLater) {
  start();
  settle();
  const FakePortal portal(bus_.connection(), wrapped(wrapped(1U)));
  EXPECT_TRUE(becomes(ColorScheme::dark));
}

TEST_F(ColorSchemeOnABus, KeepsTheLastWordOfAPortalThatLeft) {
  auto portal = std::make_unique<FakePortal>(bus_.connection(), wrapped(wrapped(1U)));
  start();
  ASSERT_TRUE(becomes(ColorScheme::dark));
  portal.reset();
  settle();
  EXPECT_EQ(scheme_->preference(), ColorScheme::dark);
  portal = std::make_unique<FakePortal>(bus_.connection(), wrapped(2U));
  EXPECT_TRUE(becomes(ColorScheme::light));
}

TEST_F(ColorSchemeOnABus, TakesNoWishAndNonsenseForNone) {
  const QList<QVariant> answers{wrapped(wrapped(0U)),
                                wrapped(wrapped(3U)),
                                wrapped(QStringLiteral("dark")),
                                QVariant(QStringLiteral("dark")),
                                wrapped(1),
                                wrapped(wrapped(wrapped(wrapped(wrapped(wrapped(1U))))))};
  for (const QVariant& answer : answers) {
    const FakePortal portal(bus_.connection(), answer);
    start();
    ASSERT_TRUE(eventually([&] { return portal.questions() >= 2; }));
    settle();
    EXPECT_EQ(scheme_->preference(), std::nullopt);
    EXPECT_TRUE(changed_->isEmpty());
    scheme_.reset();
  }
}

TEST_F(ColorSchemeOnABus, DoesNotWaitForAPortalThatNeverAnswers) {
  FakePortal portal(bus_.connection(), std::nullopt);
  start();
  ASSERT_TRUE(eventually([&] { return portal.questions() >= 1; }));
  EXPECT_EQ(scheme_->preference(), std::nullopt);
  ASSERT_TRUE(eventually([&] { return portal.questions() >= 2; }));
  portal.change(1U);
  EXPECT_TRUE(becomes(ColorScheme::dark));
}

TEST_F(ColorSchemeOnABus, BelievesOnlyThePortal) {
  const FakePortal portal(bus_.connection(), wrapped(wrapped(2U)));
  start();
  ASSERT_TRUE(becomes(ColorScheme::light));
  const QDBusConnection stranger = bus_.connection();
  FakePortal::sendChange(stranger, 1U, colorScheme);
  test::BusClient(stranger, connection_.baseService()).takeSignals();
  settle();
  EXPECT_EQ(scheme_->preference(), ColorScheme::light);
}

TEST(ColorSchemeWithoutABus, IsUnknown) {
  const std::unique_ptr<ColorSchemeWatcher> scheme = LinuxPlatform().makeColorSchemeWatcher();
  ASSERT_NE(scheme, nullptr);
  EXPECT_EQ(scheme->preference(), std::nullopt);
}

}  // namespace
}  // namespace tarn
