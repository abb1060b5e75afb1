// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/status_notifier/panel_item.hpp"

#include <gmock/gmock.h>
#include <unistd.h>

#include <QDBusObjectPath>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <memory>
#include <optional>

#include "platform/linux/dbus/bus_client.hpp"
#include "platform/linux/dbus/private_bus.hpp"
#include "platform/linux/dbus/session_bus.hpp"
#include "platform/linux/status_notifier/fake_watcher.hpp"
#include "platform/linux/status_notifier/notifier_types.hpp"
#include "platform/linux/status_notifier/status_notifier_item.hpp"
#include "platform/linux/status_notifier/test_label.hpp"
#include "support/event_loop.hpp"
#include "ui/menu_bar/menu_bar_item.hpp"

namespace tarn {
namespace {

using test::eventually;
using test::FakeWatcher;
using test::labelWithText;
using test::ordinaryLabel;
using test::WatcherReplies;

constexpr std::chrono::milliseconds shortGrace(50);
constexpr std::chrono::milliseconds longGrace = std::chrono::minutes(10);

const QString path = QStringLiteral("/StatusNotifierItem");
const QString interface = QStringLiteral("org.kde.StatusNotifierItem");

class PanelItemTest : public testing::Test {
 protected:
  void start(std::chrono::milliseconds grace) {
    PanelItemDesktop desktop{connection_,
                             [this](unsigned pid) {
                               queriedPid_ = pid;
                               return program_;
                             },
                             {},
                             grace};
    if (tray_) desktop.hasXembedTray = [this] { return *tray_; };
    item_ = std::make_unique<PanelItem>(std::move(desktop));
    appeared_ = std::make_unique<QSignalSpy>(item_.get(), &MenuBarItem::hostAppeared);
    missing_ = std::make_unique<QSignalSpy>(item_.get(), &MenuBarItem::hostMissing);
    item_->show(ordinaryLabel());
  }

  /// Waits until all messages that were sent before have been handled.
  void drainMessages() { client_.takeSignals(); }

  bool isShown(qsizetype times = 1) {
    return eventually([this, times] { return appeared_->size() == times; });
  }
  bool isMissing(qsizetype times = 1) {
    return eventually([this, times] { return missing_->size() == times; });
  }

  test::PrivateBus bus_;
  QDBusConnection connection_ = bus_.connection();
  test::BusClient client_{bus_.connection(), connection_.baseService()};
  QString program_ = QStringLiteral("some-panel");
  std::optional<unsigned> queriedPid_;
  std::optional<std::optional<bool>> tray_;
  std::unique_ptr<PanelItem> item_;
  std::unique_ptr<QSignalSpy> appeared_;
  std::unique_ptr<QSignalSpy> missing_;
};

TEST_F(PanelItemTest, RegistersWithARunningWatcher) {
  const FakeWatcher watcher(bus_.connection());
  start(longGrace);
  ASSERT_TRUE(isShown());
  EXPECT_EQ(watcher.items(), QStringList{connection_.baseService()});
  EXPECT_EQ(queriedPid_, static_cast<unsigned>(getpid()));
  EXPECT_TRUE(missing_->isEmpty());
}

TEST_F(PanelItemTest, RegistersWithAWatcherThatStartsLater) {
  start(shortGrace);
  ASSERT_TRUE(isMissing());
  const FakeWatcher watcher(bus_.connection());
  ASSERT_TRUE(isShown());
  EXPECT_EQ(watcher.items(), QStringList{connection_.baseService()});
}

TEST_F(PanelItemTest, RegistersOnceAfterEachPanelRestart) {
  start(longGrace);
  for (int restart = 0; restart < 20; ++restart) {
    FakeWatcher watcher(bus_.connection());
    ASSERT_TRUE(eventually([&] { return !watcher.items().isEmpty() && watcher.hostQueries() > 0; }))
        << restart;
    drainMessages();
    EXPECT_EQ(watcher.items(), QStringList{connection_.baseService()}) << restart;
  }
  EXPECT_TRUE(missing_->isEmpty());
}

TEST_F(PanelItemTest, RegistersWithAWatcherThatTakesOverTheName) {
  QDBusConnection first = bus_.connection();
  QDBusConnection second = bus_.connection();
  const QString name = QStringLiteral("org.kde.StatusNotifierWatcher");
  auto replaced = std::make_unique<FakeWatcher>(first);
  start(longGrace);
  ASSERT_TRUE(isShown());
  const FakeWatcher watcher(second);
  ASSERT_TRUE(first.unregisterService(name));
  EXPECT_TRUE(second.registerService(name));
  EXPECT_TRUE(eventually([&] { return watcher.items() == QStringList{connection_.baseService()}; }));
}

TEST_F(PanelItemTest, EmitsHostMissingOnceWithoutAPanel) {
  start(shortGrace);
  ASSERT_TRUE(isMissing());
  {
    const FakeWatcher watcher(bus_.connection(), /*hasHost=*/false);
    drainMessages();
  }
  drainMessages();
  EXPECT_FALSE(eventually([&] { return missing_->size() > 1; }, shortGrace * 4));
  EXPECT_TRUE(appeared_->isEmpty());
}

TEST_F(PanelItemTest, EmitsHostMissingForAWatcherWithoutAHost) {
  const FakeWatcher watcher(bus_.connection(), /*hasHost=*/false);
  start(shortGrace);
  ASSERT_TRUE(isMissing());
  EXPECT_TRUE(appeared_->isEmpty());
}

TEST_F(PanelItemTest, WaitsForAHostThatRegistersLater) {
  FakeWatcher watcher(bus_.connection(), /*hasHost=*/false);
  start(longGrace);
  ASSERT_TRUE(eventually([&] { return watcher.hostQueries() == 1; }));
  drainMessages();
  EXPECT_TRUE(appeared_->isEmpty());
  watcher.setHasHost(true);
  ASSERT_TRUE(isShown());
  EXPECT_TRUE(missing_->isEmpty());
  EXPECT_EQ(watcher.items().size(), 1);
}

TEST_F(PanelItemTest, EmitsHostMissingAfterTheHostUnregistered) {
  FakeWatcher watcher(bus_.connection());
  start(shortGrace);
  ASSERT_TRUE(isShown());
  watcher.setHasHost(false);
  ASSERT_TRUE(isMissing());
  watcher.setHasHost(true);
  ASSERT_TRUE(isShown(2));
}

TEST_F(PanelItemTest, EmitsHostMissingAfterTheWatcherStopped) {
  auto watcher = std::make_unique<FakeWatcher>(bus_.connection());
  start(shortGrace);
  ASSERT_TRUE(isShown());
  watcher.reset();
  ASSERT_TRUE(isMissing());
}

TEST_F(PanelItemTest, EmitsNoSignalForAQuickPanelRestart) {
  auto watcher = std::make_unique<FakeWatcher>(bus_.connection());
  start(longGrace);
  ASSERT_TRUE(isShown());
  watcher.reset();
  watcher = std::make_unique<FakeWatcher>(bus_.connection());
  ASSERT_TRUE(eventually([&] { return watcher->hostQueries() == 1; }));
  drainMessages();
  EXPECT_EQ(appeared_->size(), 1);
  EXPECT_TRUE(missing_->isEmpty());
}

TEST_F(PanelItemTest, ToleratesFaultyWatchers) {
  for (const WatcherReplies replies : {WatcherReplies::errors, WatcherReplies::registrationErrors,
                                       WatcherReplies::malformed, WatcherReplies::none}) {
    FakeWatcher watcher(bus_.connection(), true, replies);
    start(shortGrace);
    ASSERT_TRUE(isMissing());
    EXPECT_EQ(watcher.items().size(), 1);
    EXPECT_TRUE(appeared_->isEmpty());
    item_->show(labelWithText(QStringLiteral("1 GB")));
    EXPECT_EQ(client_.property(path, interface, QStringLiteral("Title")), QString::fromUtf8("Tarn — 1 GB"));
  }
}

TEST_F(PanelItemTest, SendsNoSecondQueryBeforeTheReply) {
  FakeWatcher watcher(bus_.connection(), true, WatcherReplies::none);
  start(longGrace);
  ASSERT_TRUE(eventually([&] { return watcher.hostQueries() == 1; }));
  for (int count = 0; count < 100; ++count) {
    watcher.sendSignal(QStringLiteral("StatusNotifierHostRegistered"), {count, QStringLiteral("malformed")});
  }
  drainMessages();
  drainMessages();
  EXPECT_EQ(watcher.hostQueries(), 1);
}

TEST_F(PanelItemTest, IgnoresSignalsFromOtherSenders) {
  FakeWatcher watcher(bus_.connection(), /*hasHost=*/false);
  start(longGrace);
  ASSERT_TRUE(eventually([&] { return watcher.hostQueries() == 1; }));
  const QDBusConnection other = bus_.connection();
  QDBusMessage forgedSignal =
      QDBusMessage::createSignal(QStringLiteral("/org/freedesktop/DBus"),
                                 QStringLiteral("org.freedesktop.DBus"), QStringLiteral("NameOwnerChanged"));
  forgedSignal.setArguments(
      {QStringLiteral("org.kde.StatusNotifierWatcher"), QString(), other.baseService()});
  other.send(forgedSignal);
  other.send(QDBusMessage::createSignal(QStringLiteral("/StatusNotifierWatcher"),
                                        QStringLiteral("org.kde.StatusNotifierWatcher"),
                                        QStringLiteral("StatusNotifierHostRegistered")));
  test::BusClient(other, connection_.baseService()).takeSignals();
  drainMessages();
  EXPECT_EQ(watcher.hostQueries(), 1);
  EXPECT_EQ(watcher.items().size(), 1);
  watcher.setHasHost(true);
  EXPECT_TRUE(isShown());
}

TEST_F(PanelItemTest, DoesNotBlockWhileTheBusIsPaused) {
  bus_.pause();
  QElapsedTimer elapsed;
  elapsed.start();
  start(shortGrace);
  item_->show(labelWithText(QStringLiteral("1 GB")));
  EXPECT_TRUE(isMissing());
  EXPECT_LT(elapsed.elapsed(), 5000);
  bus_.resume();
  const FakeWatcher watcher(bus_.connection());
  EXPECT_TRUE(isShown());
}

TEST_F(PanelItemTest, SetsTheLabelPropertyBeforeItRegisters) {
  program_ = QStringLiteral("gnome-shell");
  const FakeWatcher watcher(bus_.connection());
  start(longGrace);
  item_->show(labelWithText(QStringLiteral("3.12 GB")));
  client_.recordSignals(path, interface, {QStringLiteral("XAyatanaNewLabel")});
  ASSERT_TRUE(eventually([&] { return !watcher.items().isEmpty(); }));
  client_.takeSignals();
  EXPECT_EQ(client_.property(path, interface, QStringLiteral("XAyatanaLabel")), QStringLiteral("3.12 GB"));
}

TEST_F(PanelItemTest, AdaptsToAnotherPanel) {
  program_ = QStringLiteral("waybar");
  auto watcher = std::make_unique<FakeWatcher>(bus_.connection());
  start(longGrace);
  item_->show(labelWithText(QStringLiteral("3.12 GB")));
  ASSERT_TRUE(isShown());
  const auto firstIcon = [&] {
    return qdbus_cast<IconPixmaps>(client_.property(path, interface, QStringLiteral("IconPixmap"))).value(0);
  };
  EXPECT_GT(firstIcon().width, 32);
  EXPECT_FALSE(client_.property(path, interface, QStringLiteral("XAyatanaLabel")).isValid());

  program_ = QStringLiteral("xfce4-panel");
  watcher.reset();
  watcher = std::make_unique<FakeWatcher>(bus_.connection());
  ASSERT_TRUE(eventually([&] { return !watcher->items().isEmpty(); }));
  EXPECT_EQ(firstIcon().width, 16);
  EXPECT_FALSE(client_.property(path, interface, QStringLiteral("XAyatanaLabel")).isValid());
}

TEST_F(PanelItemTest, ReleasesMemoryAfterABurstOfCalls) {
  int releases = 0;
  PanelItem item({.bus = connection_,
                  .programName = [](unsigned) { return QString(); },
                  .hasXembedTray = {},
                  .releaseMemory = [&] { ++releases; }});
  item.show(ordinaryLabel());
  for (int count = 0; count < 64; ++count) client_.properties(path, interface);
  EXPECT_EQ(releases, 0);
  EXPECT_TRUE(eventually([&] { return releases == 1; }));
}

TEST_F(PanelItemTest, ForwardsClicksAndMenuChoices) {
  start(longGrace);
  std::optional<QPoint> position;
  QObject::connect(item_.get(), &MenuBarItem::activated,
                   [&](std::optional<QPoint> where) { position = where; });
  const QSignalSpy open(item_.get(), &MenuBarItem::openRequested);
  const QSignalSpy quit(item_.get(), &MenuBarItem::quitRequested);
  client_.call(path, interface, QStringLiteral("Activate"), {918, 10});
  EXPECT_TRUE(eventually([&] { return position == QPoint(918, 10); }));
  const QString menu =
      client_.property(path, interface, QStringLiteral("Menu")).value<QDBusObjectPath>().path();
  for (const int id : {1, 2}) {
    client_.call(menu, QStringLiteral("com.canonical.dbusmenu"), QStringLiteral("Event"),
                 {id, QStringLiteral("clicked"), QVariant::fromValue(QDBusVariant(0)), 0U});
  }
  EXPECT_TRUE(eventually([&] { return open.size() == 1 && quit.size() == 1; }));
}

TEST_F(PanelItemTest, UsesAnXembedTrayWithoutAWatcher) {
  tray_ = true;
  start(shortGrace);
  ASSERT_TRUE(isShown());
  EXPECT_TRUE(missing_->isEmpty());
  item_->show(labelWithText(QStringLiteral("1 GB")));

  const FakeWatcher watcher(bus_.connection());
  ASSERT_TRUE(eventually([&] { return watcher.items().size() == 1; }));
  drainMessages();
  EXPECT_EQ(appeared_->size(), 1);
}

TEST_F(PanelItemTest, FollowsAnXembedTrayThatAppearsAndDisappears) {
  tray_ = false;
  start(shortGrace);
  ASSERT_TRUE(isMissing());
  tray_ = true;
  ASSERT_TRUE(isShown());
  tray_ = std::optional<bool>();
  EXPECT_FALSE(eventually([&] { return missing_->size() > 1; }, shortGrace * 4));
  tray_ = false;
  ASSERT_TRUE(isMissing(2));
}

TEST_F(PanelItemTest, IgnoresAnXembedTrayWhileThereIsAWatcher) {
  const FakeWatcher watcher(bus_.connection(), /*hasHost=*/false);
  tray_ = true;
  start(shortGrace);
  ASSERT_TRUE(isMissing());
  EXPECT_TRUE(appeared_->isEmpty());
}

TEST(PanelItemWithoutBus, EmitsHostMissing) {
  const QDBusConnection none = QDBusConnection::sessionBus();
  ASSERT_FALSE(none.isConnected());
  PanelItem item({none, runningProgramName, {}, shortGrace});
  const QSignalSpy missing(&item, &MenuBarItem::hostMissing);
  item.show(ordinaryLabel());
  item.show(labelWithText(QStringLiteral("1 GB")));
  EXPECT_TRUE(eventually([&] { return missing.size() == 1; }));
}

TEST(PanelItemAfterBusExit, EmitsHostMissing) {
  auto bus = std::make_unique<test::PrivateBus>();
  const QDBusConnection connection = bus->connection();
  const FakeWatcher watcher(bus->connection());
  PanelItem item({connection, runningProgramName, {}, shortGrace});
  const QSignalSpy appeared(&item, &MenuBarItem::hostAppeared);
  const QSignalSpy missing(&item, &MenuBarItem::hostMissing);
  item.show(ordinaryLabel());
  ASSERT_TRUE(eventually([&] { return appeared.size() == 1; }));
  bus->kill();
  EXPECT_TRUE(eventually([&] { return missing.size() == 1; }));
  item.show(labelWithText(QStringLiteral("1 GB")));
}

TEST(PanelItemAfterBusExit, MovesToTheNewBus) {
  test::PrivateBus daemon;
  SessionBus bus(daemon.connection(), daemon.address());
  bus.setInterval(std::chrono::milliseconds(20));
  PanelItem item({bus.connection(), [](unsigned) { return QString(); }, {}});
  QObject::connect(&bus, &SessionBus::appeared, &item, [&] { item.moveTo(bus.connection()); });
  item.show(labelWithText(QStringLiteral("1 GB")));
  const QSignalSpy activated(&item, &MenuBarItem::activated);
  for (int times = 1; times <= 3; ++times) {
    daemon.kill();
    ASSERT_TRUE(eventually([&] { return !bus.connection().isConnected(); }));
    daemon.start();
    const FakeWatcher watcher(daemon.connection());
    ASSERT_TRUE(eventually([&] { return watcher.items() == QStringList{bus.connection().baseService()}; }));
    test::BusClient panel(daemon.connection(), bus.connection().baseService());
    EXPECT_EQ(panel.property(path, interface, QStringLiteral("Title")).toString(),
              QStringLiteral("Tarn — 1 GB"));
    panel.call(path, interface, QStringLiteral("Activate"), {1, 2});
    EXPECT_TRUE(eventually([&] { return activated.size() == times; }));
  }
}

}  // namespace
}  // namespace tarn
