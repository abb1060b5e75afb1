// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <QDesktopServices>
#include <QObject>
#include <QTimer>
#include <QUrl>
#include <memory>

#include "app/display_check.hpp"
#include "app/page_opener.hpp"
#include "app/program.hpp"
#include "app/single_instance.hpp"
#include "monitor/frontmost_application.hpp"
#include "platform/macos/desktop/file_icon.hpp"
#include "platform/macos/desktop/menu_bar_status_item.hpp"
#include "platform/macos/desktop/workspace.hpp"
#include "platform/macos/foundation/foundation.hpp"
#include "ui/popover/app_icon_provider.hpp"
#include "ui/popover/popover_window.hpp"
#include "ui/widgets/color_scheme.hpp"

namespace tarn {

namespace {

/// The toolkit's palette follows the system.
class PaletteDecides final : public ColorSchemeWatcher {
 public:
  std::optional<ColorScheme> preference() const override { return std::nullopt; }
};

/// The system starts a bundle once, and tells it when it is opened again.
class BundleInstance final : public SingleInstance {
 public:
  bool claim(std::function<void()> launchedAgain) override {
    // Later: the toolkit puts a handler of its own into the same place while it starts.
    QTimer::singleShot(0, &timing_, [this, launchedAgain = std::move(launchedAgain)] {
      reopening_ = macos::watchReopening(launchedAgain);
    });
    return true;
  }

 private:
  std::shared_ptr<void> reopening_;
  QObject timing_;  ///< no timer outlives this object
};

}  // namespace

std::unique_ptr<MenuBarItem> platformMenuBarItem() {
  return std::make_unique<macos::MenuBarStatusItem>(macos::makeStatusItem);
}

std::unique_ptr<ColorSchemeWatcher> platformColorScheme() {
  return std::make_unique<PaletteDecides>();
}

std::unique_ptr<SingleInstance> platformSingleInstance() {
  return std::make_unique<BundleInstance>();
}

FrontmostApplicationSource platformFrontmostApplication() {
  return []() -> std::optional<FrontmostApplication> {
    const auto application = macos::frontmostApplication();
    if (!application) return std::nullopt;
    return FrontmostApplication{application->bundlePath, application->processIdentifier};
  };
}

FileIconLoader platformFileIcon() {
  return [](const std::string& path) {
    return macos::iconOf({macos::fileIcon(path, 1), macos::fileIcon(path, 2)});
  };
}

WindowCapabilities platformWindowCapabilities() {
  return {
      .clientsPlaceWindows = true, .blendsWindows = true, .popupsTakeKeys = false, .hostKnowsItsPlace = true};
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
  const auto version = macos::shortVersion();
  if (!version) return std::nullopt;
  return QString::fromStdString(*version);
}

void platformSpareMemory() {}

void platformReturnMemory() {}

std::unique_ptr<QObject> platformWorkspaceWatch(std::function<void()> /*switched*/) {
  return nullptr;  // the popover has the focus, and loses it
}

std::unique_ptr<QObject> platformEndOnSignals() {
  return nullptr;  // the system ends applications by an event of its own
}

void platformTerminate() {
  macos::terminate();
}

}  // namespace tarn
