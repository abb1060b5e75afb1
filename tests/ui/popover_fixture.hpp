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

/// An application of the fake machine.
struct FakeApplication {
  std::string name;
  std::int32_t firstPID = 0;
  std::vector<std::uint64_t> footprints;  ///< of its processes, in bytes
};

/// A popover view with a real view model and a fake machine.
class PopoverFixture {
 public:
  PopoverFixture();
  ~PopoverFixture();

  /// Adds an application, or processes without a bundle if the name does not end in ".app".
  void add(const FakeApplication& application);

  /// Changes the footprint of one process.
  void setFootprint(std::int32_t pid, std::uint64_t footprint);

  /// Finishes the running sweep, if any, and publishes its snapshot. The view is not rendered.
  void finishSweep();

  /// Runs one sweep and renders its snapshot.
  void sweep();

  /// The intervals of all timers that the view model has made, in seconds.
  std::vector<double> timerIntervals() const;

  /// Makes the view. It shows the snapshot of the last sweep(), if any.
  PopoverView& makeView();

  /// Makes the view, shows it and updates its layout.
  PopoverView& showView(const Theme& theme = Theme::light());

  /// Runs pending layouts, renderings and paints, and resizes a top-level view to its preferred height.
  static void settle();

  /// Makes the view model. Its first sweep is not finished.
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

/// The frame of `widget` in the coordinates of `ancestor`.
QRect frameIn(const QWidget& ancestor, const QWidget& widget);

/// The visible rows from top to bottom.
std::vector<AppRow*> shownRows(const QWidget& view);

/// The row named `name`; null if it is not shown.
AppRow* rowNamed(const QWidget& view, const QString& name);

/// The visible labels of a widget in the order of their creation.
std::vector<QLabel*> labelsOf(const QWidget& widget);

/// The first visible label with the text `text`; null if there is none.
QLabel* labelWithText(const QWidget& widget, const QString& text);

/// The frames of the visible dividers, from top to bottom.
std::vector<QRect> dividersOf(const QWidget& view);

/// The visible process lines of a row, from top to bottom.
std::vector<ProcessLineView*> linesOf(const AppRow& row);

/// Clicks the centre of a widget.
void click(QWidget& widget);

/// Presses and releases a key on a widget.
void pressKey(QWidget& widget, Qt::Key key);

constexpr std::uint64_t kilobyte = 1024;
constexpr std::uint64_t megabyte = 1024 * kilobyte;

/// Adds "Editor" and "Mail" with two processes each and "Files" with one. Their pids start at 100, 200, 300.
void addThree(PopoverFixture& fixture);

/// Calls addThree(), runs a sweep and shows the view.
PopoverView& showThree(PopoverFixture& fixture);

/// Adds applications "App0", "App1" and so on with one process each, the largest first; pids from 1000.
void addMany(PopoverFixture& fixture, int count);

/// The names in the list, from top to bottom.
std::vector<QString> namesOf(const QWidget& view);

/// Clicks the tab labelled `tab`.
void selectTab(const QWidget& view, const QString& tab);

}  // namespace tarn
