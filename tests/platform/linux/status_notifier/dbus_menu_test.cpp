// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/status_notifier/dbus_menu.hpp"

#include <gmock/gmock.h>

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QSignalSpy>

#include "platform/linux/dbus/bus_client.hpp"
#include "platform/linux/dbus/private_bus.hpp"
#include "platform/linux/status_notifier/notifier_types.hpp"
#include "platform/linux/status_notifier/status_notifier_item.hpp"
#include "support/event_loop.hpp"

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

class DBusMenuTest : public testing::Test {
 protected:
  DBusMenuTest() {
    qDBusRegisterMetaType<MenuEvent>();
    qDBusRegisterMetaType<QList<MenuEvent>>();
  }

  QDBusMessage call(const char* method, const QVariantList& arguments) {
    return client_.call(itemMenuPath(), QStringLiteral("com.canonical.dbusmenu"), QString::fromLatin1(method),
                        arguments);
  }

  QDBusMessage event(int id, const char* name) {
    return call("Event", {id, QString::fromLatin1(name), QVariant::fromValue(QDBusVariant(QString())), 0U});
  }

  test::PrivateBus bus_;
  QDBusConnection connection_ = bus_.connection();
  DBusMenu menu_{connection_};
  QSignalSpy open_{&menu_, &DBusMenu::openClicked};
  QSignalSpy quit_{&menu_, &DBusMenu::quitClicked};
  test::BusClient client_{bus_.connection(), connection_.baseService()};
};

TEST_F(DBusMenuTest, HasOpenAndQuit) {
  const QDBusMessage reply = call("GetLayout", {0, -1, QStringList()});
  ASSERT_EQ(reply.signature(), QStringLiteral("u(ia{sv}av)"));
  const auto root = qdbus_cast<DBusMenuLayout>(reply.arguments().at(1));
  EXPECT_EQ(root.id, 0);
  EXPECT_EQ(root.properties.value(QStringLiteral("children-display")), QStringLiteral("submenu"));
  ASSERT_EQ(root.children.size(), 2);
  EXPECT_EQ(root.children.at(0).properties.value(QStringLiteral("label")), QStringLiteral("Open"));
  EXPECT_EQ(root.children.at(1).properties.value(QStringLiteral("label")), QStringLiteral("Quit"));
  EXPECT_EQ(root.children.at(1).properties.value(QStringLiteral("enabled")), true);
}

TEST_F(DBusMenuTest, GetLayoutRespectsDepthAndPropertyNames) {
  const auto root = qdbus_cast<DBusMenuLayout>(call("GetLayout", {0, 0, QStringList()}).arguments().at(1));
  EXPECT_TRUE(root.children.isEmpty());
  const QStringList onlyLabels{QStringLiteral("label")};
  const auto leaf = qdbus_cast<DBusMenuLayout>(call("GetLayout", {2, -1, onlyLabels}).arguments().at(1));
  EXPECT_EQ(leaf.id, 2);
  EXPECT_EQ(leaf.properties, (QVariantMap{{QStringLiteral("label"), QStringLiteral("Quit")}}));
  EXPECT_TRUE(leaf.children.isEmpty());
}

TEST_F(DBusMenuTest, ReturnsThePropertiesOfItsItems) {
  const QDBusMessage some =
      call("GetGroupProperties", {QVariant::fromValue(QList<int>{1, 99}), QStringList()});
  const auto items = qdbus_cast<QList<DBusMenuItem>>(some.arguments().at(0));
  ASSERT_EQ(items.size(), 1);
  EXPECT_EQ(items.at(0).id, 1);
  EXPECT_EQ(items.at(0).properties.value(QStringLiteral("label")), QStringLiteral("Open"));
  const QDBusMessage all = call("GetGroupProperties", {QVariant::fromValue(QList<int>()), QStringList()});
  EXPECT_EQ(qdbus_cast<QList<DBusMenuItem>>(all.arguments().at(0)).size(), 3);

  const QDBusMessage label = call("GetProperty", {2, QStringLiteral("label")});
  EXPECT_EQ(label.arguments().at(0).value<QDBusVariant>().variant(), QStringLiteral("Quit"));
}

TEST_F(DBusMenuTest, EmitsASignalForAClick) {
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

TEST_F(DBusMenuTest, LimitsTheRateOfClicks) {
  const QVariant group = QVariant::fromValue(QList<MenuEvent>(1000, MenuEvent{1, QStringLiteral("clicked")}));
  EXPECT_EQ(call("EventGroup", {group}).type(), QDBusMessage::ReplyMessage);
  ASSERT_TRUE(eventually([&] { return !open_.empty(); }));
  QCoreApplication::processEvents();
  // One click per clickInterval is accepted, and a slow machine may need several intervals for the message.
  EXPECT_LT(open_.size(), 50);
}

TEST_F(DBusMenuTest, IgnoresOtherEvents) {
  EXPECT_EQ(event(2, "hovered").type(), QDBusMessage::ReplyMessage);
  EXPECT_EQ(event(0, "opened").type(), QDBusMessage::ReplyMessage);
  EXPECT_EQ(event(0, "clicked").type(), QDBusMessage::ReplyMessage);
  client_.takeSignals();
  EXPECT_TRUE(open_.isEmpty());
  EXPECT_TRUE(quit_.isEmpty());
}

TEST_F(DBusMenuTest, AboutToShowReportsNoUpdate) {
  EXPECT_EQ(call("AboutToShow", {0}).arguments(), QVariantList{false});
  const QDBusMessage group = call("AboutToShowGroup", {QVariant::fromValue(QList<int>{0, 5})});
  EXPECT_EQ(qdbus_cast<QList<int>>(group.arguments().at(0)), QList<int>());
  EXPECT_EQ(qdbus_cast<QList<int>>(group.arguments().at(1)), QList<int>{5});
}

TEST_F(DBusMenuTest, RepliesToInvalidCallsWithAnError) {
  EXPECT_EQ(call("GetLayout", {77, -1, QStringList()}).type(), QDBusMessage::ErrorMessage);
  EXPECT_EQ(call("GetLayout", {QStringLiteral("0")}).type(), QDBusMessage::ErrorMessage);
  EXPECT_EQ(call("GetProperty", {1, QStringLiteral("icon-data")}).type(), QDBusMessage::ErrorMessage);
  EXPECT_EQ(call("EventGroup", {QStringList()}).type(), QDBusMessage::ErrorMessage);
  EXPECT_EQ(call("AboutToShow", {3}).type(), QDBusMessage::ErrorMessage);
  EXPECT_EQ(event(3, "clicked").type(), QDBusMessage::ErrorMessage);
}

TEST_F(DBusMenuTest, ReportsVersionThree) {
  const QString interface = QStringLiteral("com.canonical.dbusmenu");
  EXPECT_EQ(client_.property(itemMenuPath(), interface, QStringLiteral("Version")), 3U);
  EXPECT_EQ(client_.property(itemMenuPath(), interface, QStringLiteral("Status")), QStringLiteral("normal"));
}

}  // namespace
}  // namespace tarn
