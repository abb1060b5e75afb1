// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/dbus/session_bus.hpp"

#include <gtest/gtest.h>

#include <QDBusConnectionInterface>
#include <QSignalSpy>
#include <memory>

#include "platform/linux/dbus/bus_client.hpp"
#include "platform/linux/dbus/bus_single_instance.hpp"
#include "platform/linux/dbus/private_bus.hpp"
#include "support/event_loop.hpp"

namespace tarn {
namespace {

using test::eventually;

constexpr std::chrono::milliseconds retryInterval(20);

class SessionBusTest : public testing::Test {
 protected:
  std::unique_ptr<SessionBus> follow() {
    auto bus = std::make_unique<SessionBus>(daemon_.connection(), daemon_.address());
    bus->setInterval(retryInterval);
    return bus;
  }

  /// Kills the bus and waits until `bus` has noticed.
  void kill(const SessionBus& bus) {
    daemon_.kill();
    ASSERT_TRUE(eventually([&] { return !bus.connection().isConnected(); }));
  }

  test::PrivateBus daemon_;
};

TEST_F(SessionBusTest, ReconnectsEachTimeTheBusReturns) {
  const auto bus = follow();
  const QSignalSpy appeared(bus.get(), &SessionBus::appeared);
  for (int times = 1; times <= 3; ++times) {
    kill(*bus);
    EXPECT_FALSE(eventually([&] { return appeared.size() == times; }, retryInterval * 5));
    daemon_.start();
    ASSERT_TRUE(eventually([&] { return appeared.size() == times; }));
    EXPECT_TRUE(bus->connection().isConnected());
    EXPECT_TRUE(bus->connection().interface()->isServiceRegistered(bus->connection().baseService()).value());
  }
}

TEST_F(SessionBusTest, ConnectsToABusThatStartsLater) {
  daemon_.kill();
  const auto bus = follow();
  const QSignalSpy appeared(bus.get(), &SessionBus::appeared);
  daemon_.start();
  EXPECT_TRUE(eventually([&] { return appeared.size() == 1; }));
}

TEST_F(SessionBusTest, SharesOneConnectionPerAddress) {
  const auto first = follow();
  const auto second = follow();
  kill(*first);
  kill(*second);
  daemon_.start();
  ASSERT_TRUE(
      eventually([&] { return first->connection().isConnected() && second->connection().isConnected(); }));
  EXPECT_EQ(first->connection().baseService(), second->connection().baseService());
}

TEST_F(SessionBusTest, DoesNotReconnectWhileConnected) {
  const auto bus = follow();
  const QSignalSpy appeared(bus.get(), &SessionBus::appeared);
  EXPECT_FALSE(eventually([&] { return !appeared.isEmpty(); }, retryInterval * 5));
}

TEST_F(SessionBusTest, SingleInstanceMovesToTheNewBus) {
  const auto bus = follow();
  int launches = 0;
  int superseded = 0;
  BusSingleInstance first(bus->connection());
  ASSERT_TRUE(first.claim([&] { ++launches; }));
  kill(*bus);
  // The second instance starts while no bus can report the first one.
  BusSingleInstance second(bus->connection());
  ASSERT_TRUE(second.claim([] {}));
  daemon_.start();
  ASSERT_TRUE(eventually([&] { return bus->connection().isConnected(); }));
  first.claimAgain(bus->connection(), [&] { superseded += 100; });
  const auto nameOwner = [&] {
    return bus->connection().interface()->serviceOwner(singleInstanceName()).value();
  };
  ASSERT_TRUE(eventually([&] { return nameOwner() == bus->connection().baseService(); }));
  second.claimAgain(daemon_.connection(), [&] { ++superseded; });
  EXPECT_TRUE(eventually([&] { return superseded == 1; }));
  test::BusClient launcher(daemon_.connection(), singleInstanceName());
  const QString path = QLatin1Char('/') + singleInstanceName().replace(QLatin1Char('.'), QLatin1Char('/'));
  launcher.call(path, QStringLiteral("org.freedesktop.Application"), QStringLiteral("Activate"),
                {QVariantMap()});
  EXPECT_EQ(launches, 1);
}

TEST(SessionBusAddress, ComesFromTheEnvironmentOrTheRuntimeDirectory) {
  const QByteArray oldAddress = qgetenv("DBUS_SESSION_BUS_ADDRESS");
  const QByteArray oldRuntime = qgetenv("XDG_RUNTIME_DIR");
  qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/run/some/bus");
  EXPECT_EQ(sessionBusAddress(), QStringLiteral("unix:path=/run/some/bus"));
  qputenv("DBUS_SESSION_BUS_ADDRESS", "autolaunch:");
  EXPECT_EQ(sessionBusAddress(), QString());
  qunsetenv("DBUS_SESSION_BUS_ADDRESS");
  qputenv("XDG_RUNTIME_DIR", "/run/user/1");
  EXPECT_EQ(sessionBusAddress(), QStringLiteral("unix:path=/run/user/1/bus"));
  qunsetenv("XDG_RUNTIME_DIR");
  EXPECT_EQ(sessionBusAddress(), QString());
  qputenv("DBUS_SESSION_BUS_ADDRESS", oldAddress);
  if (!oldRuntime.isNull()) qputenv("XDG_RUNTIME_DIR", oldRuntime);
}

}  // namespace
}  // namespace tarn
