// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/macos/mac_platform.hpp"

#include <QCursor>
#include <QDesktopServices>
#include <QTimer>
#include <QUrl>
#include <utility>

#include "platform/macos/desktop/app_kit.hpp"
#include "platform/macos/desktop/qt_adapters.hpp"
#include "platform/macos/readers/dispatch_pressure_source.hpp"
#include "platform/macos/readers/kernel_readers.hpp"
#include "platform/macos/system/foundation.hpp"
#include "platform/macos/system/mac_system.hpp"

namespace tarn::macos {

namespace {

/// QPalette follows the system.
class PaletteColorScheme final : public ColorSchemeWatcher {
 public:
  std::optional<ColorScheme> preference() const override { return std::nullopt; }
};

/// macOS starts a bundle once and notifies the running process when the user opens it again.
class BundleInstance final : public SingleInstance {
 public:
  bool claim(std::function<void()> launchedAgain) override {
    // Deferred to the event loop: Qt installs its own handler for the same event while it starts.
    QTimer::singleShot(0, &timerContext_, [this, launchedAgain = std::move(launchedAgain)] {
      reopening_ = watchReopening(launchedAgain);
    });
    return true;
  }

 private:
  std::shared_ptr<void> reopening_;
  QObject timerContext_;  ///< cancels the timer when this object is destroyed
};

}  // namespace

void MacPlatform::limitAllocatorArenas() {}

std::optional<QString> MacPlatform::version() const {
  const auto version = shortVersion();
  if (!version) return std::nullopt;
  return QString::fromStdString(*version);
}

std::optional<QString> MacPlatform::displayProblem() const {
  return std::nullopt;
}

std::unique_ptr<SingleInstance> MacPlatform::makeSingleInstance() {
  return std::make_unique<BundleInstance>();
}

std::unique_ptr<QObject> MacPlatform::watchTerminationSignals() {
  return nullptr;  // macOS asks applications to quit by an Apple event, which Qt handles
}

void MacPlatform::terminate() {
  macos::terminate();
}

void MacPlatform::releaseFreeHeap() {}

SamplerPort MacPlatform::makeSamplerPort() {
  return makeMacSamplerPort();
}

ExtrasPort MacPlatform::makeExtrasPort() {
  return makeMacExtrasPort();
}

std::unique_ptr<PressureSource> MacPlatform::makePressureSource() {
  return std::make_unique<DispatchPressureSource>(dispatchFunctions());
}

std::optional<std::int32_t> MacPlatform::pressureLevel() const {
  return readPressureLevel(kernelFunctions());
}

FrontmostApplicationSource MacPlatform::makeFrontmostApplicationSource() {
  return []() -> std::optional<FrontmostApplication> {
    const auto application = frontmostApplication();
    if (!application) return std::nullopt;
    return FrontmostApplication{application->bundlePath, application->processIdentifier};
  };
}

int MacPlatform::activeProcessorCount() const {
  return clampedProcessorCount();
}

void MacPlatform::setCurrentThreadName(const std::string& name) const {
  macos::setCurrentThreadName(name);
}

Formatters MacPlatform::formatters() const {
  return systemFormatters();
}

std::unique_ptr<MenuBarItem> MacPlatform::makeMenuBarItem() {
  return std::make_unique<MenuBarStatusItem>(makeStatusItem);
}

std::unique_ptr<ColorSchemeWatcher> MacPlatform::makeColorSchemeWatcher() {
  return std::make_unique<PaletteColorScheme>();
}

FileIconLoader MacPlatform::makeFileIconLoader() {
  return [](const std::string& path) { return makeIcon({fileIcon(path, 1), fileIcon(path, 2)}); };
}

UrlOpener MacPlatform::makeUrlOpener() {
  return [](const QString& url) { QDesktopServices::openUrl(QUrl(url)); };
}

WindowSystemState MacPlatform::windowSystemState() const {
  return {.capabilities = {.clientsPlaceWindows = true,
                           .blendsWindows = true,
                           .popupsTakeKeys = false,
                           .clickPositionIsExact = true},
          .pointer = QCursor::pos()};
}

std::unique_ptr<CompositorPlacement> MacPlatform::makeCompositorPlacement() {
  return nullptr;
}

std::unique_ptr<QObject> MacPlatform::watchWorkspaces(std::function<void()> /*switched*/) {
  return nullptr;  // a change of space takes the focus from the popover, which closes it
}

}  // namespace tarn::macos
