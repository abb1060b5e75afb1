// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/menu_bar/menu_bar_item.hpp"

#include <gmock/gmock.h>
#include <unistd.h>

#include <QDBusObjectPath>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <memory>
#include <optional>

#include "platform/linux/dbus/bus_client.hpp"
#include "platform/linux/dbus/private_bus.hpp"
#include "platform/linux/linux_platform.hpp"
#include "platform/linux/status_notifier/fake_watcher.hpp"
#include "platform/linux/status_notifier/notifier_properties.hpp"
#include "platform/linux/status_notifier/notifier_types.hpp"
#include "platform/linux/status_notifier/panel_item.hpp"
#include "platform/linux/status_notifier/test_label.hpp"
#include "support/event_loop.hpp"

namespace tarn {
namespace {

using test::eventually;
using test::FakeWatcher;
using test::labelWithText;
using test::Manners;
using test::ordinaryLabel;

constexpr std::chrono::milliseconds shortGrace(50);
constexpr std::chrono::milliseconds longGrace = std::chrono::minutes(10);

const QString path = QStringLiteral("/StatusNotifierItem");
const QString interface = QStringLiteral("org.kde.StatusNotifierItem");

class MenuBarItemOnABus : public testing::Test {
 protected:
  void start(std::chrono::milliseconds grace) {
    PanelItemDesktop desktop{connection_,
                             [this](unsigned pid) {
                               askedPid_ = pid;
                               return program_;
                             },
                             {},
                             grace};
    if (tray_) desktop.hasEmbeddingTray = [this] { return *tray_; };
    item_ = std::make_unique<PanelItem>(std::move(desktop));
    appeared_ = std::make_unique<QSignalSpy>(item_.get(), &MenuBarItem::hostAppeared);
    missing_ = std::make_unique<QSignalSpy>(item_.get(), &MenuBarItem::hostMissing);
    item_->show(ordinaryLabel());
  }

  // Whoever sits on the bus has heard of everything before.
  void settle() { client_.takeSignals(); }

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
  std::optional<unsigned> askedPid_;
  std::optional<std::optional<bool>> tray_;
  std::unique_ptr<PanelItem> item_;
  std::unique_ptr<QSignalSpy> appeared_;
  std::unique_ptr<QSignalSpy> missing_;
};

TEST_F(MenuBarItemOnABus, RegistersWithAWatcherThatIsThere) {
  const FakeWatcher watcher(bus_.connection());
  start(longGrace);
  ASSERT_TRUE(isShown());
  EXPECT_EQ(watcher.items(), QStringList{connection_.baseService()});
  EXPECT_EQ(askedPid_, static_cast<unsigned>(getpid()));
  EXPECT_TRUE(missing_->isEmpty());
}

TEST_F(MenuBarItemOnABus, RegistersWithAWatcherThatStartsLater) {
  start(shortGrace);
  ASSERT_TRUE(isMissing());
  const FakeWatcher watcher(bus_.connection());
  ASSERT_TRUE(isShown());
  EXPECT_EQ(watcher.items(), QStringList{connection_.baseService()});
}

TEST_F(MenuBarItemOnABus, IsThereExactlyOnceAfterTwentyRestartsOfThePanel) {
  start(longGrace);
  for (int restart = 0; restart < 20; ++restart) {
    FakeWatcher watcher(bus_.connection());
    ASSERT_TRUE(eventually([&] { return !watcher.items().isEmpty() && watcher.questions() > 0; })) << restart;
    settle();
    EXPECT_EQ(watcher.items(), QStringList{connection_.baseService()}) << restart;
  }
  EXPECT_TRUE(missing_->isEmpty());
}

TEST_F(MenuBarItemOnABus, MovesToAWatcherThatTakesTheNameOver) {
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

TEST_F(MenuBarItemOnABus, SaysSoOnceWhenNoPanelCame) {
  start(shortGrace);
  ASSERT_TRUE(isMissing());
  {
    const FakeWatcher watcher(bus_.connection(), /*hasPanel=*/false);
    settle();
  }
  settle();
  EXPECT_FALSE(eventually([&] { return missing_->size() > 1; }, shortGrace * 4));
  EXPECT_TRUE(appeared_->isEmpty());
}

TEST_F(MenuBarItemOnABus, AWatcherWithoutAPanelIsNoPanel) {
  const FakeWatcher watcher(bus_.connection(), /*hasPanel=*/false);
  start(shortGrace);
  ASSERT_TRUE(isMissing());
  EXPECT_TRUE(appeared_->isEmpty());
}

TEST_F(MenuBarItemOnABus, WaitsForAPanelThatComesAfterItsWatcher) {
  FakeWatcher watcher(bus_.connection(), /*hasPanel=*/false);
  start(longGrace);
  ASSERT_TRUE(eventually([&] { return watcher.questions() == 1; }));
  settle();
  EXPECT_TRUE(appeared_->isEmpty());
  watcher.setHasPanel(true);
  ASSERT_TRUE(isShown());
  EXPECT_TRUE(missing_->isEmpty());
  EXPECT_EQ(watcher.items().size(), 1);
}

TEST_F(MenuBarItemOnABus, NoticesThatThePanelLeftItsWatcher) {
  FakeWatcher watcher(bus_.connection());
  start(shortGrace);
  ASSERT_TRUE(isShown());
  watcher.setHasPanel(false);
  ASSERT_TRUE(isMissing());
  watcher.setHasPanel(true);
  ASSERT_TRUE(isShown(2));
}

TEST_F(MenuBarItemOnABus, NoticesThatTheWatcherLeft) {
  auto watcher = std::make_unique<FakeWatcher>(bus_.connection());
  start(shortGrace);
  ASSERT_TRUE(isShown());
  watcher.reset();
  ASSERT_TRUE(isMissing());
}

TEST_F(MenuBarItemOnABus, IsSilentAboutAPanelThatRestartsQuickly) {
  auto watcher = std::make_unique<FakeWatcher>(bus_.connection());
  start(longGrace);
  ASSERT_TRUE(isShown());
  watcher.reset();
  watcher = std::make_unique<FakeWatcher>(bus_.connection());
  ASSERT_TRUE(eventually([&] { return watcher->questions() == 1; }));
  settle();
  EXPECT_EQ(appeared_->size(), 1);
  EXPECT_TRUE(missing_->isEmpty());
}

TEST_F(MenuBarItemOnABus, AWatcherOfBadMannersIsNoPanelAndDoesNoHarm) {
  for (const Manners manners :
       {Manners::refusing, Manners::refusingItems, Manners::talkingNonsense, Manners::silent}) {
    FakeWatcher watcher(bus_.connection(), true, manners);
    start(shortGrace);
    ASSERT_TRUE(isMissing());
    EXPECT_EQ(watcher.items().size(), 1);
    EXPECT_TRUE(appeared_->isEmpty());
    item_->show(labelWithText(QStringLiteral("1 GB")));
    EXPECT_EQ(client_.property(path, interface, QStringLiteral("Title")), QString::fromUtf8("Tarn — 1 GB"));
  }
}

TEST_F(MenuBarItemOnABus, IsNotMadeToAskMoreThanItIsAnswered) {
  FakeWatcher watcher(bus_.connection(), true, Manners::silent);
  start(longGrace);
  ASSERT_TRUE(eventually([&] { return watcher.questions() == 1; }));
  for (int count = 0; count < 100; ++count) {
    watcher.sendSignal(QStringLiteral("StatusNotifierHostRegistered"), {count, QStringLiteral("nonsense")});
  }
  settle();
  settle();
  EXPECT_EQ(watcher.questions(), 1);
}

TEST_F(MenuBarItemOnABus, BelievesOnlyTheWatcherItself) {
  FakeWatcher watcher(bus_.connection(), /*hasPanel=*/false);
  start(longGrace);
  ASSERT_TRUE(eventually([&] { return watcher.questions() == 1; }));
  const QDBusConnection stranger = bus_.connection();
  QDBusMessage pretence =
      QDBusMessage::createSignal(QStringLiteral("/org/freedesktop/DBus"),
                                 QStringLiteral("org.freedesktop.DBus"), QStringLiteral("NameOwnerChanged"));
  pretence.setArguments({QStringLiteral("org.kde.StatusNotifierWatcher"), QString(), stranger.baseService()});
  stranger.send(pretence);
  stranger.send(QDBusMessage::createSignal(QStringLiteral("/StatusNotifierWatcher"),
                                           QStringLiteral("org.kde.StatusNotifierWatcher"),
                                           QStringLiteral("StatusNotifierHostRegistered")));
  test::BusClient(stranger, connection_.baseService()).takeSignals();
  settle();
  EXPECT_EQ(watcher.questions(), 1);
  EXPECT_EQ(watcher.items().size(), 1);
  watcher.setHasPanel(true);
  EXPECT_TRUE(isShown());
}

TEST_F(MenuBarItemOnABus, NeverWaitsForTheBus) {
  bus_.pause();
  QElapsedTimer watch;
  watch.start();
  start(shortGrace);
  item_->show(labelWithText(QStringLiteral("1 GB")));
  EXPECT_TRUE(isMissing());
  EXPECT_LT(watch.elapsed(), 5000);
  bus_.resume();
  const FakeWatcher watcher(bus_.connection());
  EXPECT_TRUE(isShown());
}

TEST_F(MenuBarItemOnABus, SettlesTheLabelBeforeThePanelReadsIt) {
  program_ = QStringLiteral("gnome-shell");
  const FakeWatcher watcher(bus_.connection());
  start(longGrace);
  item_->show(labelWithText(QStringLiteral("3.12 GB")));
  client_.listen(path, interface, {QStringLiteral("XAyatanaNewLabel")});
  ASSERT_TRUE(eventually([&] { return !watcher.items().isEmpty(); }));
  client_.takeSignals();
  EXPECT_EQ(client_.property(path, interface, QStringLiteral("XAyatanaLabel")), QStringLiteral("3.12 GB"));
}

TEST_F(MenuBarItemOnABus, AdaptsToThePanelThatFollowsAnother) {
  program_ = QStringLiteral("waybar");
  auto watcher = std::make_unique<FakeWatcher>(bus_.connection());
  start(longGrace);
  item_->show(labelWithText(QStringLiteral("3.12 GB")));
  ASSERT_TRUE(isShown());
  const auto firstPicture = [&] {
    return qdbus_cast<NotifierPixmaps>(client_.property(path, interface, QStringLiteral("IconPixmap")))
        .value(0);
  };
  EXPECT_GT(firstPicture().width, 32);
  EXPECT_FALSE(client_.property(path, interface, QStringLiteral("XAyatanaLabel")).isValid());

  program_ = QStringLiteral("xfce4-panel");
  watcher.reset();
  watcher = std::make_unique<FakeWatcher>(bus_.connection());
  ASSERT_TRUE(eventually([&] { return !watcher->items().isEmpty(); }));
  EXPECT_EQ(firstPicture().width, 16);
  EXPECT_FALSE(client_.property(path, interface, QStringLiteral("XAyatanaLabel")).isValid());
}

TEST_F(MenuBarItemOnABus, PassesClicksAndMenuChoicesOn) {
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
  for (const int entry : {1, 2}) {
    client_.call(menu, QStringLiteral("com.canonical.dbusmenu"), QStringLiteral("Event"),
                 {entry, QStringLiteral("clicked"), QVariant::fromValue(QDBusVariant(0)), 0U});
  }
  EXPECT_TRUE(eventually([&] { return open.size() == 1 && quit.size() == 1; }));
}

TEST_F(MenuBarItemOnABus, TakesATrayOfTheOlderKindWhenThereIsNoWatcher) {
  tray_ = true;
  start(shortGrace);
  ASSERT_TRUE(isShown());
  EXPECT_TRUE(missing_->isEmpty());
  item_->show(labelWithText(QStringLiteral("1 GB")));

  const FakeWatcher watcher(bus_.connection());
  ASSERT_TRUE(eventually([&] { return watcher.items().size() == 1; }));
  settle();
  EXPECT_EQ(appeared_->size(), 1);
}

TEST_F(MenuBarItemOnABus, FollowsATrayOfTheOlderKindThatComesAndGoes) {
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

TEST_F(MenuBarItemOnABus, LeavesATrayOfTheOlderKindAloneWhileThereIsAWatcher) {
  const FakeWatcher watcher(bus_.connection(), /*hasPanel=*/false);
  tray_ = true;
  start(shortGrace);
  ASSERT_TRUE(isMissing());
  EXPECT_TRUE(appeared_->isEmpty());
}

TEST(MenuBarItemWithoutABus, SaysThatNoPanelShowsIt) {
  const QDBusConnection none = QDBusConnection::sessionBus();
  ASSERT_FALSE(none.isConnected());
  PanelItem item({none, runningProgramName, {}, shortGrace});
  const QSignalSpy missing(&item, &MenuBarItem::hostMissing);
  item.show(ordinaryLabel());
  item.show(labelWithText(QStringLiteral("1 GB")));
  EXPECT_TRUE(eventually([&] { return missing.size() == 1; }));
}

TEST(MenuBarItemWithoutABus, IsMadeAndDestroyedAllTheSame) {
  const std::unique_ptr<MenuBarItem> item = LinuxPlatform().makeMenuBarItem();
  ASSERT_NE(item, nullptr);
  item->show(ordinaryLabel());
}

TEST(MenuBarItemOfABusThatDies, SaysThatNoPanelShowsIt) {
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

}  // namespace
}  // namespace tarn
