// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <QDBusConnectionInterface>
#include <QDBusError>
#include <QDBusVirtualObject>
#include <chrono>
#include <future>
#include <utility>

#include "app/platform.hpp"
#include "platform/linux/dbus/bus_client.hpp"
#include "platform/linux/dbus/bus_single_instance.hpp"
#include "platform/linux/dbus/private_bus.hpp"
#include "platform/linux/linux_platform.hpp"
#include "support/event_loop.hpp"

namespace tarn {
namespace {

using test::eventually;

const QString path = QLatin1Char('/') + singleInstanceName().replace(QLatin1Char('.'), QLatin1Char('/'));
const QString application = QStringLiteral("org.freedesktop.Application");

// Has the name, and refuses whatever it is asked for.
class Stranger final : public QDBusVirtualObject {
 public:
  explicit Stranger(QDBusConnection connection) : connection_(std::move(connection)) {
    connection_.registerVirtualObject(path, this);
    connection_.registerService(singleInstanceName());
  }

  ~Stranger() override {
    connection_.unregisterService(singleInstanceName());
    connection_.unregisterObject(path);
  }
  Q_DISABLE_COPY_MOVE(Stranger)

  QString introspect(const QString& /*path*/) const override { return {}; }

  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    return connection.send(message.createErrorReply(QDBusError::UnknownMethod, QStringLiteral("No")));
  }

 private:
  QDBusConnection connection_;
};

class SingleInstanceOnABus : public testing::Test {
 protected:
  bool claim() {
    return first_.claim([this] { ++launches_; });
  }

  // Another program's claim, while this one goes on.
  bool claimElsewhere() {
    const QDBusConnection connection = bus_.connection();
    auto answer =
        std::async(std::launch::async, [connection] { return BusSingleInstance(connection).claim([] {}); });
    EXPECT_TRUE(
        eventually([&] { return answer.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }));
    return answer.get();
  }

  QDBusMessage call(const char* method, const QVariantList& arguments) {
    return client_.call(path, application, QString::fromLatin1(method), arguments);
  }

  test::PrivateBus bus_;
  BusSingleInstance first_{bus_.connection()};
  test::BusClient client_{bus_.connection(), singleInstanceName()};
  int launches_ = 0;
};

TEST_F(SingleInstanceOnABus, TheFirstOwnsTheName) {
  EXPECT_TRUE(claim());
  EXPECT_TRUE(bus_.connection().interface()->isServiceRegistered(singleInstanceName()).value());
  EXPECT_EQ(launches_, 0);
}

TEST_F(SingleInstanceOnABus, TheSecondReachesTheFirst) {
  ASSERT_TRUE(claim());
  EXPECT_FALSE(claimElsewhere());
  EXPECT_EQ(launches_, 1);
}

TEST_F(SingleInstanceOnABus, TheSecondStaysWhereTheFirstDoesNotUnderstand) {
  const Stranger stranger(bus_.connection());
  EXPECT_TRUE(claimElsewhere());
}

TEST_F(SingleInstanceOnABus, TheDesktopReachesItAtThePathOfItsName) {
  ASSERT_TRUE(claim());
  const QVariantMap platformData{{QStringLiteral("desktop-startup-id"), QStringLiteral("x_TIME1")}};
  EXPECT_EQ(call("Activate", {platformData}).type(), QDBusMessage::ReplyMessage);
  EXPECT_EQ(launches_, 1);
  EXPECT_EQ(call("Open", {QStringList{QStringLiteral("file:///")}, platformData}).type(),
            QDBusMessage::ReplyMessage);
  EXPECT_EQ(launches_, 2);
  EXPECT_EQ(call("ActivateAction", {QStringLiteral("open"), QVariantList(), platformData}).type(),
            QDBusMessage::ReplyMessage);
  EXPECT_EQ(launches_, 3);
}

TEST(SingleInstanceWithoutABus, IsTheFirst) {
  EXPECT_TRUE(LinuxPlatform().makeSingleInstance()->claim([] {}));
}

}  // namespace
}  // namespace tarn
