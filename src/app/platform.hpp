// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The platform interface: everything that Tarn needs from an operating system and its desktop. A port to
// another system is one class that implements Platform; docs/porting.md is the guide.
//
// How the program gets its platform: each folder below src/platform has a main.cpp that constructs its
// platform class and passes it to runTarn(). CMake compiles the main.cpp of one folder (TARN_PLATFORM).
// Nothing outside src/platform includes a file of src/platform.

#pragma once

#include <QObject>
#include <QPoint>
#include <QRect>
#include <QString>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "extras/ports.hpp"
#include "format/formatting.hpp"
#include "monitor/memory_pressure.hpp"
#include "monitor/presentation.hpp"
#include "sampling/process_source.hpp"
#include "ui/menu_bar/menu_bar_item.hpp"
#include "ui/popover/popover_content.hpp"
#include "ui/popover/popover_window.hpp"
#include "ui/widgets/theme.hpp"

namespace tarn {

/// Opens a URL in the user's browser. Returns immediately. Does nothing when there is no browser. Main
/// thread.
using UrlOpener = std::function<void(const QString& url)>;

/// Keeps one Tarn process per session: a second process asks the first one to open its popover, and exits.
/// Main thread.
class SingleInstance {
 public:
  virtual ~SingleInstance() = default;

  /// Returns whether this is the session's first Tarn process; true when that cannot be determined (no
  /// session bus). When it returns false, the first process has already been asked to open its popover.
  /// `launchedAgain` is called each time a later process asks this one to open its popover. Call claim()
  /// once.
  virtual bool claim(std::function<void()> launchedAgain) = 0;
};

/// What the window system reports for one user action.
struct WindowSystemState {
  WindowCapabilities capabilities = {};
  std::optional<QPoint> pointer = {};  ///< screen coordinates; nullopt where clients cannot read them
  std::optional<QRect> windowUnderPointer = {};  ///< the panel, when its item was clicked and X11 reports it
};

/// One operating system and desktop.
///
/// Ownership: runTarn() and everything that it creates keep a reference; main() owns the platform and
/// destroys it last. Returned objects and functions may be used until the platform is destroyed. Thread: the
/// main thread, except where stated. Failure: no function throws, except for lack of memory. A function
/// returns its neutral value (stated for each function) when the system does not support the operation.
/// Functions named make... return null only where stated.
class Platform {
 public:
  Platform() = default;
  virtual ~Platform() = default;
  Platform(const Platform&) = delete;
  Platform& operator=(const Platform&) = delete;

  // Called before QApplication is created. No other thread runs yet.

  /// Limits the memory that the allocator keeps. The program calls this function first. Neutral: does
  /// nothing.
  virtual void limitAllocatorArenas() = 0;

  /// This program's version, as its package states it. Neutral: nullopt.
  virtual std::optional<QString> version() const = 0;

  /// Why no window can be shown, as a clause for a message on stderr; nullopt when a display is available.
  /// Called before QApplication is created, because Qt aborts the program where there is no display.
  /// Neutral: nullopt.
  virtual std::optional<QString> displayProblem() const = 0;

  // The process. Called after QApplication is created.

  /// Neutral: an instance whose claim() returns true.
  virtual std::unique_ptr<SingleInstance> makeSingleInstance() = 0;

  /// Calls terminate() when a signal requests the end of the program, until the returned object is destroyed.
  /// Neutral: null, where no such signals exist.
  virtual std::unique_ptr<QObject> watchTerminationSignals() = 0;

  /// Ends the program in the system's usual way; may return before it ends. Neutral:
  /// QCoreApplication::quit().
  virtual void terminate() = 0;

  /// Returns free heap memory to the system. Called after large objects were freed. Neutral: does nothing.
  virtual void releaseFreeHeap() = 0;

  // The monitor. Each make... function is called once.

  /// The process table and memory figures. Neutral: no processes, all figures 0.
  virtual SamplerPort makeSamplerPort() = 0;

  /// Storage, battery, temperatures, uptime. May read values once that are constant while the program runs.
  /// Neutral: all values absent.
  virtual ExtrasPort makeExtrasPort() = 0;

  /// Memory pressure events. Neutral: a source that reports none.
  virtual std::unique_ptr<PressureSource> makePressureSource() = 0;

  /// The current memory pressure as a raw MemoryPressure value. Neutral: nullopt.
  virtual std::optional<std::int32_t> pressureLevel() const = 0;

  /// The application that has the keyboard focus. Neutral: a source that returns nullopt.
  virtual FrontmostApplicationSource makeFrontmostApplicationSource() = 0;

  /// Number of processor cores online, also those that this process may not use. Neutral: 1, which is
  /// also the minimum. Any thread.
  virtual int activeProcessorCount() const = 0;

  /// Names the calling thread in tools that list threads; the system may truncate the name. Neutral: does
  /// nothing. Any thread.
  virtual void setCurrentThreadName(const std::string& name) const = 0;

  /// Number formatters of the user's locale, created at their first use. They may be used on any thread and
  /// live until the process ends. Ports to systems without formatters return icuFormatters().
  virtual Formatters formatters() const = 0;

  // The desktop. Called after QApplication is created. Each make... function is called once.

  /// The item in the menu bar or panel. Neutral: an item that emits hostMissing() after the event loop
  /// starts; Tarn then stays in a window.
  virtual std::unique_ptr<MenuBarItem> makeMenuBarItem() = 0;

  /// The user's light or dark preference. Neutral: a watcher without a preference; QPalette decides.
  virtual std::unique_ptr<ColorSchemeWatcher> makeColorSchemeWatcher() = 0;

  /// Loads an application's icon. Neutral: a function that returns a null icon.
  virtual FileIconLoader makeFileIconLoader() = 0;

  /// Neutral: QDesktopServices::openUrl().
  virtual UrlOpener makeUrlOpener() = 0;

  /// The window system's current state. The call may block for several round trips: call it once per user
  /// action.
  /// Neutral: WindowSystemState{}.
  virtual WindowSystemState windowSystemState() const = 0;

  /// Asks the compositor to place the popover. Neutral: null, where clients place their windows.
  virtual std::unique_ptr<CompositorPlacement> makeCompositorPlacement() = 0;

  /// Calls `switched` each time the user changes to another workspace, until the returned object is
  /// destroyed. Neutral: null, where the system does not report it or where the popover closes without it.
  virtual std::unique_ptr<QObject> watchWorkspaces(std::function<void()> switched) = 0;
};

}  // namespace tarn
