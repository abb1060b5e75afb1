// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/status_notifier/status_notifier_item.hpp"

#include <gmock/gmock.h>

#include <QDBusObjectPath>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QXmlStreamReader>
#include <memory>
#include <utility>
#include <vector>

#include "platform/linux/dbus/bus_client.hpp"
#include "platform/linux/dbus/private_bus.hpp"
#include "platform/linux/status_notifier/notifier_types.hpp"
#include "platform/linux/status_notifier/test_label.hpp"
#include "support/event_loop.hpp"

namespace tarn {
namespace {

using test::eventually;
using test::labelWithText;
using test::ordinaryLabel;

const QString path = QStringLiteral("/StatusNotifierItem");
const QString interface = QStringLiteral("org.kde.StatusNotifierItem");
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

class StatusNotifierItemTest : public testing::Test {
 protected:
  StatusNotifierItemTest() {
    client_.recordSignals(path, interface,
                          {QStringLiteral("NewTitle"), QStringLiteral("NewIcon"),
                           QStringLiteral("NewToolTip"), QStringLiteral("NewStatus"),
                           QStringLiteral("NewIconAccessibleDesc"), QStringLiteral("XAyatanaNewLabel")});
    client_.recordSignals(path, propertiesInterface, {QStringLiteral("PropertiesChanged")});
  }

  QVariant property(const char* name) { return client_.property(path, interface, QString::fromLatin1(name)); }

  QDBusMessage call(const char* method, const QVariantList& arguments) {
    return client_.call(path, interface, QString::fromLatin1(method), arguments);
  }

  IconPixmaps pixmaps() { return qdbus_cast<IconPixmaps>(property("IconPixmap")); }

  test::PrivateBus bus_;
  QDBusConnection connection_ = bus_.connection();
  StatusNotifierItem item_{connection_, ordinaryLabel()};
  test::BusClient client_{bus_.connection(), connection_.baseService()};
};

TEST_F(StatusNotifierItemTest, HasTheRequiredProperties) {
  EXPECT_EQ(property("Category"), QStringLiteral("SystemServices"));
  EXPECT_EQ(property("Id"), QStringLiteral("tarn"));
  EXPECT_EQ(property("Title"), QStringLiteral("Tarn"));
  EXPECT_EQ(property("Status"), QStringLiteral("Active"));
  EXPECT_EQ(property("IconName"), QString());
  EXPECT_EQ(property("IconAccessibleDesc"), QStringLiteral("Memory normal"));
  EXPECT_EQ(property("ItemIsMenu"), false);
  EXPECT_EQ(property("Menu").value<QDBusObjectPath>().path(), itemMenuPath());
}

TEST_F(StatusNotifierItemTest, GetAllReturnsExactlyItsProperties) {
  EXPECT_THAT(client_.properties(path, interface).keys(),
              testing::UnorderedElementsAre(QStringLiteral("Category"), QStringLiteral("Id"),
                                            QStringLiteral("Title"), QStringLiteral("Status"),
                                            QStringLiteral("IconName"), QStringLiteral("IconPixmap"),
                                            QStringLiteral("IconAccessibleDesc"), QStringLiteral("ToolTip"),
                                            QStringLiteral("ItemIsMenu"), QStringLiteral("Menu")));
}

TEST_F(StatusNotifierItemTest, SendsIconsAsBigEndianArgb) {
  const IconPixmaps icons = pixmaps();
  const QList<int> sizes{16, 22, 24, 32, 48, 64};
  ASSERT_EQ(icons.size(), sizes.size());
  for (qsizetype index = 0; index < sizes.size(); ++index) {
    const IconPixmap& icon = icons.at(index);
    const int size = sizes.at(index);
    ASSERT_EQ(icon.width, size);
    ASSERT_EQ(icon.height, size);
    ASSERT_EQ(icon.bytes.size(), qsizetype{size} * size * 4);
    const qsizetype middle = (qsizetype{size} / 2 * size + size / 2) * 4;
    EXPECT_EQ(icon.bytes.mid(middle, 4).toHex(), QByteArray("ff249a63"));
    EXPECT_EQ(icon.bytes.left(4).toHex(), QByteArray("00000000"));
    const QImage drawn = circleIcon(ordinaryLabel(), size).convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < size; ++y) {
      for (int x = 0; x < size; ++x) {
        const QRgb pixel = drawn.pixel(x, y);
        const char expected[] = {static_cast<char>(qAlpha(pixel)), static_cast<char>(qRed(pixel)),
                                 static_cast<char>(qGreen(pixel)), static_cast<char>(qBlue(pixel))};
        ASSERT_EQ(icon.bytes.mid((qsizetype{y} * size + x) * 4, 4), QByteArray(expected, 4));
      }
    }
  }
}

TEST_F(StatusNotifierItemTest, ToolTipHasStatusSentenceAndMemoryFigures) {
  const auto toolTip = qdbus_cast<NotifierToolTip>(property("ToolTip"));
  EXPECT_EQ(
      toolTip,
      (NotifierToolTip{
          QString(), {}, QStringLiteral("There is memory to spare."), QStringLiteral("6 GB of 16 GB used")}));
}

TEST_F(StatusNotifierItemTest, TitleAndToolTipHaveTheText) {
  item_.show(labelWithText(QStringLiteral("3.12 GB")));
  EXPECT_EQ(property("Title"), QString::fromUtf8("Tarn — 3.12 GB"));
  EXPECT_EQ(qdbus_cast<NotifierToolTip>(property("ToolTip")).text,
            QStringLiteral("6 GB of 16 GB used\nFrontmost application: 3.12 GB"));
}

TEST_F(StatusNotifierItemTest, EscapesMarkupInTheToolTip) {
  MenuBarLabel label = ordinaryLabel();
  label.toolTip.detail = QStringLiteral("<b>1 & 2</b>");
  item_.show(label);
  EXPECT_EQ(qdbus_cast<NotifierToolTip>(property("ToolTip")).text,
            QStringLiteral("&lt;b&gt;1 &amp; 2&lt;/b&gt;"));
}

TEST_F(StatusNotifierItemTest, SendsNoSignalWhenNothingChanged) {
  item_.show(ordinaryLabel());
  item_.setHostKind(HostKind::plain);
  EXPECT_EQ(client_.takeSignalNames(), QStringList());
}

TEST_F(StatusNotifierItemTest, SendsSignalsOnlyForChangedProperties) {
  MenuBarLabel label = ordinaryLabel();
  label.toolTip.detail = QStringLiteral("7 GB of 16 GB used");
  item_.show(label);
  const QList<QDBusMessage> signal = client_.takeSignals();
  ASSERT_EQ(signal.size(), 2);
  EXPECT_EQ(signal.at(0).member(), QStringLiteral("PropertiesChanged"));
  EXPECT_EQ(signal.at(0).arguments().at(0), interface);
  EXPECT_EQ(qdbus_cast<QVariantMap>(signal.at(0).arguments().at(1)).keys(),
            QStringList{QStringLiteral("ToolTip")});
  EXPECT_EQ(signal.at(1).member(), QStringLiteral("NewToolTip"));

  label.tint = Tint::red;
  item_.show(label);
  EXPECT_EQ(client_.takeSignalNames(),
            (QStringList{QStringLiteral("NewIcon"), QStringLiteral("PropertiesChanged")}));

  label.accessibilityText = QStringLiteral("Memory pressure critical");
  item_.show(label);
  EXPECT_EQ(client_.takeSignalNames(),
            (QStringList{QStringLiteral("NewIconAccessibleDesc"), QStringLiteral("PropertiesChanged")}));

  label.text = QStringLiteral("1 MB");
  label.toolTip.footprint = label.text;
  item_.show(label);
  EXPECT_EQ(client_.takeSignalNames(), (QStringList{QStringLiteral("NewTitle"), QStringLiteral("NewToolTip"),
                                                    QStringLiteral("PropertiesChanged")}));
}

TEST_F(StatusNotifierItemTest, PaintsTheTextIntoWideIcons) {
  item_.setHostKind(HostKind::wideIcons);
  EXPECT_EQ(client_.takeSignalNames(), QStringList());
  item_.show(labelWithText(QStringLiteral("3.12 GB")));
  EXPECT_THAT(client_.takeSignalNames(), testing::Contains(QStringLiteral("NewIcon")));
  const IconPixmaps icons = pixmaps();
  ASSERT_EQ(icons.size(), 6);
  for (const IconPixmap& icon : icons) {
    EXPECT_GT(icon.width, icon.height * 2);
    EXPECT_EQ(icon.bytes.size(), qsizetype{icon.width} * icon.height * 4);
  }
  EXPECT_FALSE(property("XAyatanaLabel").isValid());
  item_.show(ordinaryLabel());
  EXPECT_EQ(pixmaps().at(0).width, 16);
}

TEST_F(StatusNotifierItemTest, HasALabelPropertyOnlyForPanelsThatShowIt) {
  item_.show(labelWithText(QStringLiteral("3.12 GB")));
  EXPECT_FALSE(property("XAyatanaLabel").isValid());
  client_.takeSignals();

  item_.setHostKind(HostKind::ayatanaLabel);
  EXPECT_EQ(property("XAyatanaLabel"), QStringLiteral("3.12 GB"));
  EXPECT_EQ(pixmaps().at(0).width, 16);
  EXPECT_EQ(client_.takeSignalNames(),
            (QStringList{QStringLiteral("PropertiesChanged"), QStringLiteral("XAyatanaNewLabel")}));

  item_.show(labelWithText(QStringLiteral("4 GB")));
  const QList<QDBusMessage> signal = client_.takeSignals();
  ASSERT_FALSE(signal.isEmpty());
  EXPECT_EQ(signal.last().member(), QStringLiteral("XAyatanaNewLabel"));
  EXPECT_EQ(signal.last().arguments(), (QVariantList{QStringLiteral("4 GB"), QString()}));

  item_.show(ordinaryLabel());
  EXPECT_EQ(property("XAyatanaLabel"), QString());

  item_.setHostKind(HostKind::plain);
  EXPECT_FALSE(client_.properties(path, interface).contains(QStringLiteral("XAyatanaLabel")));
}

TEST_F(StatusNotifierItemTest, ReportsThePositionOfAClick) {
  QSignalSpy activated(&item_, &StatusNotifierItem::activated);
  const std::vector<std::pair<const char*, QPoint>> clicks{
      {"Activate", {918, 10}}, {"SecondaryActivate", {-5, 0}}, {"ContextMenu", {1, 2}}};
  for (const auto& [method, position] : clicks) {
    activated.clear();
    ASSERT_TRUE(eventually([&, method = method, position = position] {
      EXPECT_EQ(call(method, {position.x(), position.y()}).type(), QDBusMessage::ReplyMessage);
      return !activated.isEmpty();
    }));
    EXPECT_EQ(activated.at(0).at(0).toPoint(), position);
  }
}

TEST_F(StatusNotifierItemTest, LimitsTheRateOfClicks) {
  const QSignalSpy activated(&item_, &StatusNotifierItem::activated);
  QElapsedTimer elapsed;
  elapsed.start();
  for (int i = 0; i < 300; ++i) {
    EXPECT_EQ(call("Activate", {918, 10}).type(), QDBusMessage::ReplyMessage);
  }
  EXPECT_TRUE(eventually([&] { return !activated.isEmpty(); }));
  EXPECT_LE(activated.size(), 1 + elapsed.elapsed() / StatusNotifierItem::clickInterval.count());
}

TEST_F(StatusNotifierItemTest, AcceptsScrollAndActivationTokenWithoutASignal) {
  QSignalSpy activated(&item_, &StatusNotifierItem::activated);
  EXPECT_EQ(call("Scroll", {120, QStringLiteral("vertical")}).type(), QDBusMessage::ReplyMessage);
  EXPECT_EQ(call("ProvideXdgActivationToken", {QStringLiteral("token")}).type(), QDBusMessage::ReplyMessage);
  EXPECT_EQ(client_.takeSignalNames(), QStringList());
  EXPECT_TRUE(activated.isEmpty());
  EXPECT_FALSE(qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
}

TEST_F(StatusNotifierItemTest, RepliesToInvalidCallsWithAnError) {
  QSignalSpy activated(&item_, &StatusNotifierItem::activated);
  EXPECT_EQ(call("Activate", {QStringLiteral("here"), 3}).type(), QDBusMessage::ErrorMessage);
  EXPECT_EQ(call("Activate", {}).type(), QDBusMessage::ErrorMessage);
  EXPECT_EQ(call("NoSuchMethod", {1}).type(), QDBusMessage::ErrorMessage);
  const auto callProperties = [&](const char* method, const QVariantList& arguments) {
    return client_.call(path, propertiesInterface, QString::fromLatin1(method), arguments).type();
  };
  EXPECT_EQ(callProperties("Get", {interface, QStringLiteral("WindowId")}), QDBusMessage::ErrorMessage);
  EXPECT_EQ(callProperties("Get", {7}), QDBusMessage::ErrorMessage);
  EXPECT_EQ(callProperties("GetAll", {QStringLiteral("no.such.interface")}), QDBusMessage::ErrorMessage);
  EXPECT_EQ(callProperties("Set", {interface, QStringLiteral("Title"),
                                   QVariant::fromValue(QDBusVariant(QStringLiteral("mine")))}),
            QDBusMessage::ErrorMessage);
  EXPECT_EQ(
      client_.call(path, QStringLiteral("no.such.interface"), QStringLiteral("Activate"), {1, 2}).type(),
      QDBusMessage::ErrorMessage);
  EXPECT_EQ(property("Title"), QStringLiteral("Tarn"));
  EXPECT_TRUE(activated.isEmpty());
}

TEST_F(StatusNotifierItemTest, IntrospectionMatchesTheCurrentProperties) {
  const auto introspectedNames = [&] {
    const QDBusMessage reply = client_.call(path, QStringLiteral("org.freedesktop.DBus.Introspectable"),
                                            QStringLiteral("Introspect"));
    QXmlStreamReader xml(reply.arguments().value(0).toString());
    QStringList names;
    while (!xml.atEnd()) {
      if (xml.readNext() == QXmlStreamReader::StartElement) {
        names << xml.attributes().value(QStringLiteral("name")).toString() +
                     xml.attributes().value(QStringLiteral("type")).toString();
      }
    }
    EXPECT_FALSE(xml.hasError());
    return names;
  };
  EXPECT_THAT(introspectedNames(),
              testing::IsSupersetOf({interface, QStringLiteral("IconPixmapa(iiay)"),
                                     QStringLiteral("ToolTip(sa(iiay)ss)"), QStringLiteral("Menuo"),
                                     QStringLiteral("Activate")}));
  EXPECT_THAT(introspectedNames(), testing::Not(testing::Contains(QStringLiteral("XAyatanaLabels"))));
  item_.setHostKind(HostKind::ayatanaLabel);
  EXPECT_THAT(introspectedNames(), testing::Contains(QStringLiteral("XAyatanaLabels")));
}

TEST(StatusNotifierItemLifetime, LeavesTheBusWhenDestroyed) {
  test::PrivateBus bus;
  QDBusConnection connection = bus.connection();
  auto item = std::make_unique<StatusNotifierItem>(connection, ordinaryLabel());
  test::BusClient client(bus.connection(), connection.baseService());
  EXPECT_TRUE(client.property(path, interface, QStringLiteral("Title")).isValid());
  item.reset();
  EXPECT_FALSE(client.property(path, interface, QStringLiteral("Title")).isValid());
}

}  // namespace
}  // namespace tarn
