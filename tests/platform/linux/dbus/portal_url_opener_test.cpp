// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <QDBusError>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>
#include <QDeadlineTimer>
#include <QDesktopServices>
#include <QList>
#include <QStringList>
#include <QUrl>
#include <chrono>
#include <memory>
#include <utility>

#include "platform/linux/dbus/bus_client.hpp"
#include "platform/linux/dbus/portal_url_opener.hpp"
#include "platform/linux/dbus/private_bus.hpp"
#include "platform/linux/linux_platform.hpp"
#include "support/event_loop.hpp"

namespace tarn {
namespace {

using test::eventually;

const QString page = QStringLiteral("https://tarn.example/?a=b&c");

/// What a portal does with a request.
enum class Answer { opens, refuses, knowsNoSuchThing, none };

class FakePortal final : public QDBusVirtualObject {
 public:
  FakePortal(QDBusConnection connection, Answer answer)
      : connection_(std::move(connection)), answer_(answer) {
    connection_.registerVirtualObject(QStringLiteral("/org/freedesktop/portal/desktop"), this);
    connection_.registerService(QStringLiteral("org.freedesktop.portal.Desktop"));
  }

  ~FakePortal() override {
    connection_.unregisterService(QStringLiteral("org.freedesktop.portal.Desktop"));
    connection_.unregisterObject(QStringLiteral("/org/freedesktop/portal/desktop"));
  }
  Q_DISABLE_COPY_MOVE(FakePortal)

  QString introspect(const QString& /*path*/) const override { return {}; }

  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    requests_ << message;
    switch (answer_) {
      case Answer::opens:
        connection.send(message.createReply(QVariant::fromValue(QDBusObjectPath("/request"))));
        break;
      case Answer::refuses:
        connection.send(message.createErrorReply(QDBusError::AccessDenied, QStringLiteral("No")));
        break;
      case Answer::knowsNoSuchThing:
        return false;  // by which the bus' library says so
      case Answer::none:
        break;
    }
    return true;
  }

  const QList<QDBusMessage>& requests() const { return requests_; }

 private:
  QDBusConnection connection_;
  Answer answer_;
  QList<QDBusMessage> requests_;
};

class UrlOpenerOnABus : public testing::Test {
 protected:
  void start(Answer answer) { portal_ = std::make_unique<FakePortal>(portalConnection_, answer); }

  void ask(std::chrono::milliseconds patience = std::chrono::minutes(1)) {
    opener_ = std::make_unique<PortalUrlOpener>(
        connection_, [this](const QString& opened) { openedOtherwise_ << opened; }, patience);
    opener_->open(page);
  }

  bool isAsked() {
    return eventually([this] { return !portal_->requests().isEmpty(); });
  }

  bool isOpenedOtherwise() {
    return eventually([this] { return !openedOtherwise_.isEmpty(); });
  }

  /// Waits until what the portal has answered is here: its answers keep their order.
  void settle() {
    test::BusClient(connection_, portalConnection_.baseService())
        .call(QStringLiteral("/"), QStringLiteral("org.freedesktop.DBus.Peer"), QStringLiteral("Ping"));
  }

  test::PrivateBus bus_;
  QDBusConnection connection_ = bus_.connection();
  QDBusConnection portalConnection_ = bus_.connection();
  std::unique_ptr<FakePortal> portal_;
  std::unique_ptr<PortalUrlOpener> opener_;
  QStringList openedOtherwise_;
};

TEST_F(UrlOpenerOnABus, AsksThePortalForThePageAsItIs) {
  start(Answer::opens);
  ask();
  ASSERT_TRUE(isAsked());
  settle();
  ASSERT_EQ(portal_->requests().size(), 1);
  const QDBusMessage& request = portal_->requests().first();
  EXPECT_EQ(request.interface(), "org.freedesktop.portal.OpenURI");
  EXPECT_EQ(request.member(), "OpenURI");
  EXPECT_EQ(request.signature(), "ssa{sv}");
  EXPECT_EQ(request.arguments().value(0), QString());
  EXPECT_EQ(request.arguments().value(1), page);
  EXPECT_EQ(openedOtherwise_, QStringList());
}

TEST_F(UrlOpenerOnABus, OpensItOtherwiseWhereThereIsNoPortal) {
  ask();
  ASSERT_TRUE(isOpenedOtherwise());
  EXPECT_EQ(openedOtherwise_, QStringList{page});
}

TEST_F(UrlOpenerOnABus, OpensItOtherwiseWhereThePortalDoesNot) {
  for (const Answer answer : {Answer::refuses, Answer::knowsNoSuchThing}) {
    openedOtherwise_.clear();
    start(answer);
    ask();
    ASSERT_TRUE(isOpenedOtherwise());
    settle();
    EXPECT_EQ(openedOtherwise_, QStringList{page});
    portal_.reset();
  }
}

TEST_F(UrlOpenerOnABus, OpensItOtherwiseWhenThePortalHasNotAnsweredInTime) {
  start(Answer::none);
  ask(std::chrono::milliseconds(50));
  ASSERT_TRUE(isOpenedOtherwise());
  EXPECT_EQ(openedOtherwise_, QStringList{page});
}

TEST_F(UrlOpenerOnABus, WaitsForNobodyMeanwhile) {
  start(Answer::none);
  bus_.pause();  // whoever waits for an answer now, waits as long as the bus' library has patience
  const QDeadlineTimer longBeforeThat(std::chrono::seconds(10));
  ask();
  EXPECT_FALSE(longBeforeThat.hasExpired());
  bus_.resume();
  ASSERT_TRUE(isAsked());
  settle();
  EXPECT_EQ(openedOtherwise_, QStringList());
}

TEST_F(UrlOpenerOnABus, ForgetsARequestWhenItIsDestroyed) {
  start(Answer::refuses);
  ask();
  opener_.reset();
  ASSERT_TRUE(isAsked());
  settle();
  EXPECT_EQ(openedOtherwise_, QStringList());
}

/// Notes the pages that the toolkit is asked to open.
class NotedPages final : public QObject {
  Q_OBJECT

 public:
  NotedPages() { QDesktopServices::setUrlHandler(QStringLiteral("https"), this, "note"); }
  ~NotedPages() override { QDesktopServices::unsetUrlHandler(QStringLiteral("https")); }
  Q_DISABLE_COPY_MOVE(NotedPages)

  QStringList pages;

 public Q_SLOTS:
  void note(const QUrl& address) { pages << address.toString(); }
};

TEST(UrlOpenerWithoutABus, LeavesItToQt) {
  const NotedPages noted;
  const UrlOpener opener = LinuxPlatform().makeUrlOpener();
  opener(page);
  ASSERT_TRUE(eventually([&] { return !noted.pages.isEmpty(); }));
  EXPECT_EQ(noted.pages, QStringList{page});
}

}  // namespace
}  // namespace tarn

#include "portal_url_opener_test.moc"
