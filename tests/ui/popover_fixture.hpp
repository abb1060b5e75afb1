// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QLabel>
#include <QRect>
#include <QString>
#include <QTemporaryDir>
#include <QWidget>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "monitor/monitor_view_model.hpp"
#include "monitor/preferences.hpp"
#include "support/fake_extras.hpp"
#include "support/fake_machine.hpp"
#include "support/fake_pressure_source.hpp"
#include "support/stepped_run_loop.hpp"
#include "ui/popover/app_row.hpp"
#include "ui/popover/popover_view.hpp"

namespace tarn {

/// One application of the fake machine, with all its processes.
struct StagedApplication {
  std::string name;
  std::int32_t firstPID = 0;
  std::vector<std::uint64_t> footprints;  ///< of its processes, bytes
};

/// A popover's view with a real view model over a fake machine.
class PopoverStage {
 public:
  PopoverStage();
  ~PopoverStage();

  /// Adds an application, or a bare process when the name has no ".app".
  void add(const StagedApplication& application);

  /// Changes the footprint of one process.
  void setFootprint(std::int32_t pid, std::uint64_t footprint);

  /// Ends the sweep in flight, if there is one, and publishes what it found; nothing is rendered yet.
  void finishSweep();

  /// Runs one sweep to its end and renders what it published.
  void sweep();

  /// The intervals of all timers so far, in seconds.
  std::vector<double> timerIntervals() const;

  /// Makes the view; `sweep` before it is the machine that it finds.
  PopoverView& makeView();

  /// Makes the view, shows it in the light theme and settles its layout.
  PopoverView& showView(const Theme& theme = Theme::light());

  /// Lets layouts, queued renderings and paintings happen, and gives a view that is a window of its own the
  /// height that it asks for.
  static void settle();

  /// Makes the view model, whose first sweep waits to be published.
  void start();

  FakeMachine machine;
  FakeExtras extras;
  FakePressure pressure;
  SteppedRunLoop loop;
  SteppedQueues queues;
  QTemporaryDir folder;
  std::unique_ptr<Preferences> preferences;
  std::int32_t pressureLevel = 1;
  int cores = 4;
  std::vector<std::string> loadedIcons;
  std::shared_ptr<MonitorViewModel> model;  ///< made by `start` or `makeView`
  std::unique_ptr<PopoverView> view;
};

/// Where `widget` lies in `ancestor`.
QRect frameIn(const QWidget& ancestor, const QWidget& widget);

/// The visible rows in the order in which they lie on the screen.
std::vector<AppRow*> shownRows(const QWidget& view);

/// The row of the application or process with that name; null when it is not shown.
AppRow* rowNamed(const QWidget& view, const QString& name);

/// The visible labels of a widget in the order in which they were made, and those with that text.
std::vector<QLabel*> labelsOf(const QWidget& widget);
QLabel* labelWithText(const QWidget& widget, const QString& text);

/// The frames of the visible dividers, from top to bottom.
std::vector<QRect> dividersOf(const QWidget& view);

/// The visible process lines of a row, from top to bottom.
std::vector<ProcessLineView*> linesOf(const AppRow& row);

/// Clicks in the middle of a widget.
void click(QWidget& widget);

/// Presses and releases a key on a widget.
void pressKey(QWidget& widget, Qt::Key key);

constexpr std::uint64_t kilobyte = 1024;
constexpr std::uint64_t megabyte = 1024 * kilobyte;

/// Three applications: "Editor" and "Mail" with two processes each, then "Files" with one; pids from 100,
/// 200, 300.
void addThree(PopoverStage& stage);

/// Applications "App0" and so on with one process each, the heaviest first; pids from 1000.
void addMany(PopoverStage& stage, int count);

/// The names in the list, from top to bottom.
std::vector<QString> namesOf(const QWidget& view);

/// Chooses the tab with this label.
void choose(const QWidget& view, const QString& tab);

}  // namespace tarn
