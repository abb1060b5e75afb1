// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <QDBusError>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDeadlineTimer>
#include <QList>
#include <QStringList>
#include <chrono>
#include <memory>
#include <utility>

#include "platform/linux/dbus/bus_client.hpp"
#include "platform/linux/dbus/fake_service.hpp"
#include "platform/linux/dbus/portals.hpp"
#include "platform/linux/dbus/private_bus.hpp"
#include "support/event_loop.hpp"

namespace tarn {
namespace {

using test::eventually;

const QString url = QStringLiteral("https://tarn.example/?a=b&c");

/// How a portal replies to a request.
enum class Reply { success, refusal, unknownMethod, none };

class FakePortal final : public test::FakeService {
 public:
  FakePortal(QDBusConnection connection, Reply reply)
      : FakeService(std::move(connection), QStringLiteral("org.freedesktop.portal.Desktop"),
                    QStringLiteral("/org/freedesktop/portal/desktop")),
        reply_(reply) {}

  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    requests_ << message;
    switch (reply_) {
      case Reply::success:
        connection.send(message.createReply(QVariant::fromValue(QDBusObjectPath("/request"))));
        break;
      case Reply::refusal:
        connection.send(message.createErrorReply(QDBusError::AccessDenied, QStringLiteral("No")));
        break;
      case Reply::unknownMethod:
        return false;  // Qt replies with UnknownMethod
      case Reply::none:
        break;
    }
    return true;
  }

  const QList<QDBusMessage>& requests() const { return requests_; }

 private:
  Reply reply_;
  QList<QDBusMessage> requests_;
};

class PortalUrlOpenerTest : public testing::Test {
 protected:
  void start(Reply reply) { portal_ = std::make_unique<FakePortal>(portalConnection_, reply); }

  void open(std::chrono::milliseconds timeout = std::chrono::minutes(1)) {
    opener_ = std::make_unique<PortalUrlOpener>(
        connection_, [this](const QString& opened) { fallbackUrls_ << opened; }, timeout);
    opener_->open(url);
  }

  bool isRequested() {
    return eventually([this] { return !portal_->requests().isEmpty(); });
  }

  bool isFallbackCalled() {
    return eventually([this] { return !fallbackUrls_.isEmpty(); });
  }

  /// Waits until all replies of the portal have arrived.
  void drainMessages() {
    test::BusClient(connection_, portalConnection_.baseService())
        .call(QStringLiteral("/"), QStringLiteral("org.freedesktop.DBus.Peer"), QStringLiteral("Ping"));
  }

  test::PrivateBus bus_;
  QDBusConnection connection_ = bus_.connection();
  QDBusConnection portalConnection_ = bus_.connection();
  std::unique_ptr<FakePortal> portal_;
  std::unique_ptr<PortalUrlOpener> opener_;
  QStringList fallbackUrls_;
};

TEST_F(PortalUrlOpenerTest, SendsTheUrlUnchanged) {
  start(Reply::success);
  open();
  ASSERT_TRUE(isRequested());
  drainMessages();
  ASSERT_EQ(portal_->requests().size(), 1);
  const QDBusMessage& request = portal_->requests().first();
  EXPECT_EQ(request.interface(), "org.freedesktop.portal.OpenURI");
  EXPECT_EQ(request.member(), "OpenURI");
  EXPECT_EQ(request.signature(), "ssa{sv}");
  EXPECT_EQ(request.arguments().value(0), QString());
  EXPECT_EQ(request.arguments().value(1), url);
  EXPECT_EQ(fallbackUrls_, QStringList());
}

TEST_F(PortalUrlOpenerTest, CallsTheFallbackWithoutAPortal) {
  open();
  ASSERT_TRUE(isFallbackCalled());
  EXPECT_EQ(fallbackUrls_, QStringList{url});
}

TEST_F(PortalUrlOpenerTest, CallsTheFallbackWhenThePortalRefuses) {
  for (const Reply reply : {Reply::refusal, Reply::unknownMethod}) {
    fallbackUrls_.clear();
    start(reply);
    open();
    ASSERT_TRUE(isFallbackCalled());
    drainMessages();
    EXPECT_EQ(fallbackUrls_, QStringList{url});
    portal_.reset();
  }
}

TEST_F(PortalUrlOpenerTest, CallsTheFallbackAfterTheTimeout) {
  start(Reply::none);
  open(std::chrono::milliseconds(50));
  ASSERT_TRUE(isFallbackCalled());
  EXPECT_EQ(fallbackUrls_, QStringList{url});
}

TEST_F(PortalUrlOpenerTest, DoesNotBlock) {
  start(Reply::none);
  bus_.pause();  // a blocking call would last as long as libdbus waits for a reply, 25 s
  const QDeadlineTimer deadline(std::chrono::seconds(10));
  open();
  EXPECT_FALSE(deadline.hasExpired());
  bus_.resume();
  ASSERT_TRUE(isRequested());
  drainMessages();
  EXPECT_EQ(fallbackUrls_, QStringList());
}

TEST_F(PortalUrlOpenerTest, IgnoresTheReplyAfterItsDestruction) {
  start(Reply::refusal);
  open();
  opener_.reset();
  ASSERT_TRUE(isRequested());
  drainMessages();
  EXPECT_EQ(fallbackUrls_, QStringList());
}

}  // namespace
}  // namespace tarn
