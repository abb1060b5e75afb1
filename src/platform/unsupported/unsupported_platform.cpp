// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/unsupported/unsupported_platform.hpp"

#include <QCoreApplication>
#include <QCursor>
#include <QDesktopServices>
#include <QTimer>
#include <QUrl>
#include <vector>

#include "platform/icu/icu_formatters.hpp"

namespace tarn {

namespace {

class NoProcesses final : public ProcScan {
 public:
  std::vector<std::int32_t> allPIDs() override { return {}; }
  std::optional<BsdInfo> bsdInfo(std::int32_t /*pid*/) override { return std::nullopt; }
  std::string path(std::int32_t /*pid*/) override { return {}; }
  std::optional<ProcessUsage> usage(std::int32_t /*pid*/) override { return std::nullopt; }
  SharedText processName(std::int32_t /*pid*/) override { return {}; }
};

class NoMemoryFigures final : public SystemMemoryReader {
 public:
  std::uint64_t totalRAM() override { return 0; }
  std::uint64_t swapUsed() override { return 0; }
  SystemMemory read() override { return {}; }
};

class NoPressureEvents final : public PressureSource {
 public:
  void resume(TaskQueue& /*queue*/, Handler /*handler*/) override {}
};

class NoMenuBar final : public MenuBarItem {
 public:
  NoMenuBar() { QTimer::singleShot(0, this, &MenuBarItem::hostMissing); }
  void show(const MenuBarLabel& /*label*/) override {}
};

class NoColorScheme final : public ColorSchemeWatcher {
 public:
  std::optional<ColorScheme> preference() const override { return std::nullopt; }
};

class EveryInstance final : public SingleInstance {
 public:
  bool claim(std::function<void()> /*launchedAgain*/) override { return true; }
};

}  // namespace

void UnsupportedPlatform::limitAllocatorArenas() {}

std::optional<QString> UnsupportedPlatform::version() const {
  return std::nullopt;
}

std::optional<QString> UnsupportedPlatform::displayProblem() const {
  return std::nullopt;
}

std::unique_ptr<SingleInstance> UnsupportedPlatform::makeSingleInstance() {
  return std::make_unique<EveryInstance>();
}

std::unique_ptr<QObject> UnsupportedPlatform::watchTerminationSignals() {
  return nullptr;
}

void UnsupportedPlatform::terminate() {
  QCoreApplication::quit();
}

void UnsupportedPlatform::releaseFreeHeap() {}

SamplerPort UnsupportedPlatform::makeSamplerPort() {
  SamplerPort port;
  port.processes = std::make_unique<NoProcesses>();
  port.memory = std::make_unique<NoMemoryFigures>();
  port.uptime = [] { return 0.0; };
  return port;
}

ExtrasPort UnsupportedPlatform::makeExtrasPort() {
  return {.rootVolume = [] { return std::nullopt; },
          .power = {.powerSources = [] { return std::vector<std::optional<PropertyDictionary>>(); },
                    .batteryController = [] { return std::nullopt; }},
          .temperatures = [] { return std::vector<double>(); },
          .uptime = [] { return 0.0; },
          .thermalState = [] { return ThermalState::unknown; }};
}

std::unique_ptr<PressureSource> UnsupportedPlatform::makePressureSource() {
  return std::make_unique<NoPressureEvents>();
}

std::optional<std::int32_t> UnsupportedPlatform::pressureLevel() const {
  return std::nullopt;
}

FrontmostApplicationSource UnsupportedPlatform::makeFrontmostApplicationSource() {
  return [] { return std::nullopt; };
}

int UnsupportedPlatform::activeProcessorCount() const {
  return 1;
}

void UnsupportedPlatform::setCurrentThreadName(const std::string& /*name*/) const {}

Formatters UnsupportedPlatform::formatters() const {
  return icuFormatters();
}

std::unique_ptr<MenuBarItem> UnsupportedPlatform::makeMenuBarItem() {
  return std::make_unique<NoMenuBar>();
}

std::unique_ptr<ColorSchemeWatcher> UnsupportedPlatform::makeColorSchemeWatcher() {
  return std::make_unique<NoColorScheme>();
}

FileIconLoader UnsupportedPlatform::makeFileIconLoader() {
  return [](const std::string& /*path*/) { return QIcon(); };
}

UrlOpener UnsupportedPlatform::makeUrlOpener() {
  return [](const QString& url) { QDesktopServices::openUrl(QUrl(url)); };
}

WindowSystemState UnsupportedPlatform::windowSystemState() const {
  return {.pointer = QCursor::pos()};
}

std::unique_ptr<CompositorPlacement> UnsupportedPlatform::makeCompositorPlacement() {
  return nullptr;
}

std::unique_ptr<QObject> UnsupportedPlatform::watchWorkspaces(std::function<void()> /*switched*/) {
  return nullptr;
}

}  // namespace tarn
