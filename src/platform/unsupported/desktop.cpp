// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <QCoreApplication>
#include <QDesktopServices>
#include <QTimer>
#include <QUrl>
#include <memory>

#include "app/display_check.hpp"
#include "app/page_opener.hpp"
#include "app/program.hpp"
#include "app/single_instance.hpp"
#include "monitor/frontmost_application.hpp"
#include "ui/menu_bar/menu_bar_item.hpp"
#include "ui/popover/app_icon_provider.hpp"
#include "ui/popover/popover_window.hpp"
#include "ui/widgets/color_scheme.hpp"

namespace tarn {

namespace {

/// Says that there is no menu bar: Tarn then stays in a window of its own.
class NoMenuBar final : public MenuBarItem {
 public:
  NoMenuBar() { QTimer::singleShot(0, this, &MenuBarItem::hostMissing); }
  void show(const MenuBarLabel& /*label*/) override {}
};

class NoPreference final : public ColorSchemeWatcher {
 public:
  std::optional<ColorScheme> preference() const override { return std::nullopt; }
};

class EveryInstance final : public SingleInstance {
 public:
  bool claim(std::function<void()> /*launchedAgain*/) override { return true; }
};

}  // namespace

std::unique_ptr<MenuBarItem> platformMenuBarItem() {
  return std::make_unique<NoMenuBar>();
}

std::unique_ptr<ColorSchemeWatcher> platformColorScheme() {
  return std::make_unique<NoPreference>();
}

std::unique_ptr<SingleInstance> platformSingleInstance() {
  return std::make_unique<EveryInstance>();
}

FrontmostApplicationSource platformFrontmostApplication() {
  return [] { return std::nullopt; };
}

FileIconLoader platformFileIcon() {
  return [](const std::string& /*path*/) { return QIcon(); };
}

WindowCapabilities platformWindowCapabilities() {
  return {};
}

std::optional<QRect> platformWindowUnderPointer() {
  return std::nullopt;
}

std::unique_ptr<CompositorPlacement> platformCompositorPlacement() {
  return nullptr;
}

PageOpener platformPageOpener() {
  return [](const QString& page) { QDesktopServices::openUrl(QUrl(page)); };
}

std::optional<QString> platformDisplayProblem() {
  return std::nullopt;
}

std::optional<QString> platformShortVersion() {
  return std::nullopt;
}

void platformSpareMemory() {}

void platformReturnMemory() {}

std::unique_ptr<QObject> platformWorkspaceWatch(std::function<void()> /*switched*/) {
  return nullptr;
}

std::unique_ptr<QObject> platformEndOnSignals() {
  return nullptr;
}

void platformTerminate() {
  QCoreApplication::quit();
}

}  // namespace tarn
