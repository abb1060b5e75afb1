// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/dbus/bus_object.hpp"

#include <gtest/gtest.h>

#include <QSignalSpy>

#include "platform/linux/dbus/bus_client.hpp"
#include "platform/linux/dbus/private_bus.hpp"
#include "support/event_loop.hpp"

namespace tarn {
namespace {

using test::eventually;

const QString path = QStringLiteral("/object");
const QString interface = QStringLiteral("example.Interface");

class BusObjectTest : public testing::Test {
 protected:
  void callTimes(int times) {
    for (int count = 0; count < times; ++count) {
      EXPECT_EQ(client_.call(path, interface, QStringLiteral("Echo"), {count}).arguments(),
                QVariantList{count});
    }
  }

  test::PrivateBus bus_;
  QDBusConnection connection_ = bus_.connection();
  BusObject object_{
      connection_, path,
      BusInterface{interface,
                   {{QStringLiteral("Echo"),
                     {QStringLiteral("i"), [](const QVariantList& arguments) { return arguments; }}}},
                   [] { return QVariantMap(); },
                   QString()}};
  test::BusClient client_{bus_.connection(), connection_.baseService()};
};

TEST_F(BusObjectTest, EmitsBurstEndedOnceAfterManyCalls) {
  const QSignalSpy burstEnded(&object_, &BusObject::burstEnded);
  callTimes(64);
  EXPECT_TRUE(burstEnded.isEmpty());
  EXPECT_TRUE(eventually([&] { return burstEnded.size() == 1; }));
}

TEST_F(BusObjectTest, EmitsNoBurstEndedAfterFewCalls) {
  const QSignalSpy burstEnded(&object_, &BusObject::burstEnded);
  callTimes(63);
  EXPECT_FALSE(eventually([&] { return !burstEnded.isEmpty(); },
                          BusObject::burstPause + std::chrono::milliseconds(500)));
}

}  // namespace
}  // namespace tarn
