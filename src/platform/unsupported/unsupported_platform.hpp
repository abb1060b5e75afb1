// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include "app/platform.hpp"

namespace tarn {

/// Every function returns its neutral value. Tests use this class, and a port to another system starts as a
/// copy of it.
class UnsupportedPlatform final : public Platform {
 public:
  void limitAllocatorArenas() override;
  std::optional<QString> version() const override;
  std::optional<QString> displayProblem() const override;

  std::unique_ptr<SingleInstance> makeSingleInstance() override;
  std::unique_ptr<QObject> watchTerminationSignals() override;
  void terminate() override;
  void releaseFreeHeap() override;

  SamplerPort makeSamplerPort() override;
  ExtrasPort makeExtrasPort() override;
  std::unique_ptr<PressureSource> makePressureSource() override;
  std::optional<std::int32_t> pressureLevel() const override;
  FrontmostApplicationSource makeFrontmostApplicationSource() override;
  int activeProcessorCount() const override;
  void setCurrentThreadName(const std::string& name) const override;
  Formatters formatters() const override;

  std::unique_ptr<MenuBarItem> makeMenuBarItem() override;
  std::unique_ptr<ColorSchemeWatcher> makeColorSchemeWatcher() override;
  FileIconLoader makeFileIconLoader() override;
  UrlOpener makeUrlOpener() override;
  WindowSystemState windowSystemState() const override;
  std::unique_ptr<CompositorPlacement> makeCompositorPlacement() override;
  std::unique_ptr<QObject> watchWorkspaces(std::function<void()> switched) override;
};

}  // namespace tarn
