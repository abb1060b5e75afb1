// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/status_notifier/dbus_menu.hpp"

#include <gmock/gmock.h>

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QSignalSpy>

#include "platform/linux/dbus/bus_client.hpp"
#include "support/event_loop.hpp"
#include "platform/linux/status_notifier/notifier_properties.hpp"
#include "platform/linux/status_notifier/notifier_types.hpp"
#include "platform/linux/dbus/private_bus.hpp"

namespace tarn {
namespace {

using test::eventually;

struct MenuEvent {
  int id = 0;
  QString name;
};

QDBusArgument& operator<<(QDBusArgument& argument, const MenuEvent& event) {
  argument.beginStructure();
  argument << event.id << event.name << QDBusVariant(QString()) << 0U;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, MenuEvent&) {
  return argument;
}

class NotifierMenuOnTheBus : public testing::Test {
 protected:
  NotifierMenuOnTheBus() {
    qDBusRegisterMetaType<MenuEvent>();
    qDBusRegisterMetaType<QList<MenuEvent>>();
  }

  QDBusMessage call(const char* method, const QVariantList& arguments) {
    return client_.call(notifierMenuPath(), QStringLiteral("com.canonical.dbusmenu"),
                        QString::fromLatin1(method), arguments);
  }

  QDBusMessage event(int id, const char* name) {
    return call("Event", {id, QString::fromLatin1(name), QVariant::fromValue(QDBusVariant(QString())), 0U});
  }

  test::PrivateBus bus_;
  QDBusConnection connection_ = bus_.connection();
  NotifierMenu menu_{connection_};
  QSignalSpy open_{&menu_, &NotifierMenu::openChosen};
  QSignalSpy quit_{&menu_, &NotifierMenu::quitChosen};
  test::BusClient client_{bus_.connection(), connection_.baseService()};
};

TEST_F(NotifierMenuOnTheBus, OffersOpenAndQuit) {
  const QDBusMessage reply = call("GetLayout", {0, -1, QStringList()});
  ASSERT_EQ(reply.signature(), QStringLiteral("u(ia{sv}av)"));
  const auto root = qdbus_cast<NotifierMenuLayout>(reply.arguments().at(1));
  EXPECT_EQ(root.id, 0);
  EXPECT_EQ(root.properties.value(QStringLiteral("children-display")), QStringLiteral("submenu"));
  ASSERT_EQ(root.children.size(), 2);
  EXPECT_EQ(root.children.at(0).properties.value(QStringLiteral("label")), QStringLiteral("Open"));
  EXPECT_EQ(root.children.at(1).properties.value(QStringLiteral("label")), QStringLiteral("Quit"));
  EXPECT_EQ(root.children.at(1).properties.value(QStringLiteral("enabled")), true);
}

TEST_F(NotifierMenuOnTheBus, GoesNoDeeperThanItIsAskedTo) {
  const auto root =
      qdbus_cast<NotifierMenuLayout>(call("GetLayout", {0, 0, QStringList()}).arguments().at(1));
  EXPECT_TRUE(root.children.isEmpty());
  const QStringList onlyLabels{QStringLiteral("label")};
  const auto leaf = qdbus_cast<NotifierMenuLayout>(call("GetLayout", {2, -1, onlyLabels}).arguments().at(1));
  EXPECT_EQ(leaf.id, 2);
  EXPECT_EQ(leaf.properties, (QVariantMap{{QStringLiteral("label"), QStringLiteral("Quit")}}));
  EXPECT_TRUE(leaf.children.isEmpty());
}

TEST_F(NotifierMenuOnTheBus, GivesThePropertiesOfItsEntries) {
  const QDBusMessage some =
      call("GetGroupProperties", {QVariant::fromValue(QList<int>{1, 99}), QStringList()});
  const auto entries = qdbus_cast<QList<NotifierMenuProperties>>(some.arguments().at(0));
  ASSERT_EQ(entries.size(), 1);
  EXPECT_EQ(entries.at(0).id, 1);
  EXPECT_EQ(entries.at(0).properties.value(QStringLiteral("label")), QStringLiteral("Open"));
  const QDBusMessage all = call("GetGroupProperties", {QVariant::fromValue(QList<int>()), QStringList()});
  EXPECT_EQ(qdbus_cast<QList<NotifierMenuProperties>>(all.arguments().at(0)).size(), 3);

  const QDBusMessage one = call("GetProperty", {2, QStringLiteral("label")});
  EXPECT_EQ(one.arguments().at(0).value<QDBusVariant>().variant(), QStringLiteral("Quit"));
}

TEST_F(NotifierMenuOnTheBus, AClickOnAnEntryChoosesIt) {
  EXPECT_EQ(event(1, "clicked").type(), QDBusMessage::ReplyMessage);
  ASSERT_TRUE(eventually([&] { return open_.size() == 1; }));
  EXPECT_TRUE(quit_.isEmpty());
  const QVariant group = QVariant::fromValue(QList<MenuEvent>{
      {2, QStringLiteral("hovered")}, {44, QStringLiteral("clicked")}, {2, QStringLiteral("clicked")}});
  const QDBusMessage reply = call("EventGroup", {group});
  EXPECT_EQ(qdbus_cast<QList<int>>(reply.arguments().at(0)), QList<int>{44});
  ASSERT_TRUE(eventually([&] { return quit_.size() == 1; }));
  EXPECT_EQ(open_.size(), 1);
}

TEST_F(NotifierMenuOnTheBus, AFloodOfClicksIsNoFloodOfChoices) {
  const QVariant group = QVariant::fromValue(QList<MenuEvent>(1000, MenuEvent{1, QStringLiteral("clicked")}));
  EXPECT_EQ(call("EventGroup", {group}).type(), QDBusMessage::ReplyMessage);
  ASSERT_TRUE(eventually([&] { return !open_.empty(); }));
  QCoreApplication::processEvents();
  // A hand that chooses again later is heard; a slow machine may take longer than that over the thousand.
  EXPECT_LT(open_.size(), 50);
}

TEST_F(NotifierMenuOnTheBus, OtherEventsChooseNothing) {
  EXPECT_EQ(event(2, "hovered").type(), QDBusMessage::ReplyMessage);
  EXPECT_EQ(event(0, "opened").type(), QDBusMessage::ReplyMessage);
  EXPECT_EQ(event(0, "clicked").type(), QDBusMessage::ReplyMessage);
  client_.takeSignals();
  EXPECT_TRUE(open_.isEmpty());
  EXPECT_TRUE(quit_.isEmpty());
}

TEST_F(NotifierMenuOnTheBus, IsReadyWheneverItIsAboutToBeShown) {
  EXPECT_EQ(call("AboutToShow", {0}).arguments(), QVariantList{false});
  const QDBusMessage group = call("AboutToShowGroup", {QVariant::fromValue(QList<int>{0, 5})});
  EXPECT_EQ(qdbus_cast<QList<int>>(group.arguments().at(0)), QList<int>());
  EXPECT_EQ(qdbus_cast<QList<int>>(group.arguments().at(1)), QList<int>{5});
}

TEST_F(NotifierMenuOnTheBus, AnswersNonsenseWithAnError) {
  EXPECT_EQ(call("GetLayout", {77, -1, QStringList()}).type(), QDBusMessage::ErrorMessage);
  EXPECT_EQ(call("GetLayout", {QStringLiteral("0")}).type(), QDBusMessage::ErrorMessage);
  EXPECT_EQ(call("GetProperty", {1, QStringLiteral("icon-data")}).type(), QDBusMessage::ErrorMessage);
  EXPECT_EQ(call("EventGroup", {QStringList()}).type(), QDBusMessage::ErrorMessage);
  EXPECT_EQ(call("AboutToShow", {3}).type(), QDBusMessage::ErrorMessage);
  EXPECT_EQ(event(3, "clicked").type(), QDBusMessage::ErrorMessage);
}

TEST_F(NotifierMenuOnTheBus, SpeaksTheThirdVersionOfTheProtocol) {
  const QString interface = QStringLiteral("com.canonical.dbusmenu");
  EXPECT_EQ(client_.property(notifierMenuPath(), interface, QStringLiteral("Version")), 3U);
  EXPECT_EQ(client_.property(notifierMenuPath(), interface, QStringLiteral("Status")),
            QStringLiteral("normal"));
}

}  // namespace
}  // namespace tarn
