// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <QDBusConnectionInterface>
#include <QDBusError>
#include <chrono>
#include <future>
#include <utility>

#include "platform/linux/dbus/bus_client.hpp"
#include "platform/linux/dbus/bus_single_instance.hpp"
#include "platform/linux/dbus/fake_service.hpp"
#include "platform/linux/dbus/private_bus.hpp"
#include "support/event_loop.hpp"

namespace tarn {
namespace {

using test::eventually;

const QString path = QLatin1Char('/') + singleInstanceName().replace(QLatin1Char('.'), QLatin1Char('/'));
const QString application = QStringLiteral("org.freedesktop.Application");

/// Owns the name and replies to each call with an error.
class RefusingOwner final : public test::FakeService {
 public:
  explicit RefusingOwner(QDBusConnection connection)
      : FakeService(std::move(connection), singleInstanceName(), path) {}

  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    return connection.send(message.createErrorReply(QDBusError::UnknownMethod, QStringLiteral("No")));
  }
};

class BusSingleInstanceTest : public testing::Test {
 protected:
  bool claim() {
    return first_.claim([this] { ++launches_; });
  }

  /// Claims the name as another process does, on another thread so that this thread can reply.
  bool claimAsOther() {
    const QDBusConnection connection = bus_.connection();
    auto result =
        std::async(std::launch::async, [connection] { return BusSingleInstance(connection).claim([] {}); });
    EXPECT_TRUE(
        eventually([&] { return result.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }));
    return result.get();
  }

  QDBusMessage call(const char* method, const QVariantList& arguments) {
    return client_.call(path, application, QString::fromLatin1(method), arguments);
  }

  test::PrivateBus bus_;
  BusSingleInstance first_{bus_.connection()};
  test::BusClient client_{bus_.connection(), singleInstanceName()};
  int launches_ = 0;
};

TEST_F(BusSingleInstanceTest, FirstInstanceOwnsTheName) {
  EXPECT_TRUE(claim());
  EXPECT_TRUE(bus_.connection().interface()->isServiceRegistered(singleInstanceName()).value());
  EXPECT_EQ(launches_, 0);
}

TEST_F(BusSingleInstanceTest, SecondInstanceActivatesTheFirst) {
  ASSERT_TRUE(claim());
  EXPECT_FALSE(claimAsOther());
  EXPECT_EQ(launches_, 1);
}

TEST_F(BusSingleInstanceTest, SecondInstanceContinuesWhenTheOwnerRefuses) {
  const RefusingOwner owner(bus_.connection());
  EXPECT_TRUE(claimAsOther());
}

TEST_F(BusSingleInstanceTest, OffersTheApplicationInterfaceAtThePathOfItsName) {
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

}  // namespace
}  // namespace tarn
