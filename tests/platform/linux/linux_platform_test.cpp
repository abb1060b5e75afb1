// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/linux_platform.hpp"

#include <gtest/gtest.h>

#include <QDesktopServices>
#include <QStringList>
#include <QUrl>
#include <memory>
#include <optional>

#include "platform/linux/status_notifier/test_label.hpp"
#include "support/event_loop.hpp"

namespace tarn {
namespace {

using test::eventually;

/// Records the URLs that QDesktopServices receives.
class DesktopServicesRecorder final : public QObject {
  Q_OBJECT

 public:
  DesktopServicesRecorder() { QDesktopServices::setUrlHandler(QStringLiteral("https"), this, "record"); }
  ~DesktopServicesRecorder() override { QDesktopServices::unsetUrlHandler(QStringLiteral("https")); }
  Q_DISABLE_COPY_MOVE(DesktopServicesRecorder)

  QStringList urls;

 public Q_SLOTS:
  void record(const QUrl& address) { urls << address.toString(); }
};

TEST(LinuxPlatformWithoutBus, HasNoColorSchemePreference) {
  LinuxPlatform platform;
  const std::unique_ptr<ColorSchemeWatcher> scheme = platform.makeColorSchemeWatcher();
  ASSERT_NE(scheme, nullptr);
  EXPECT_EQ(scheme->preference(), std::nullopt);
}

TEST(LinuxPlatformWithoutBus, OpensUrlsThroughQt) {
  const QString url = QStringLiteral("https://tarn.example/?a=b&c");
  const DesktopServicesRecorder recorder;
  LinuxPlatform platform;
  const UrlOpener opener = platform.makeUrlOpener();
  opener(url);
  ASSERT_TRUE(eventually([&] { return !recorder.urls.isEmpty(); }));
  EXPECT_EQ(recorder.urls, QStringList{url});
}

TEST(LinuxPlatformWithoutBus, IsTheFirstInstance) {
  LinuxPlatform platform;
  EXPECT_TRUE(platform.makeSingleInstance()->claim([] {}));
}

TEST(LinuxPlatformWithoutBus, MakesAMenuBarItem) {
  LinuxPlatform platform;
  const std::unique_ptr<MenuBarItem> item = platform.makeMenuBarItem();
  ASSERT_NE(item, nullptr);
  item->show(test::ordinaryLabel());
}

}  // namespace
}  // namespace tarn

#include "linux_platform_test.moc"
