// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/popover_fixture.hpp"

#include <QApplication>
#include <QLayout>
#include <QPixmap>
#include <QTest>
#include <algorithm>
#include <utility>

#include "ui/plain_formatters.hpp"
#include "ui/widgets/controls.hpp"

namespace tarn {

namespace {

QIcon plainIcon() {
  QPixmap pixmap(32, 32);
  pixmap.fill(QColor(Qt::blue));
  return pixmap;
}

/// The visible descendants of a widget in the order of their creation.
template <typename Widget>
std::vector<Widget*> visibleChildren(const QWidget& parent) {
  std::vector<Widget*> visible;
  for (Widget* child : parent.findChildren<Widget*>()) {
    if (child->isVisible()) visible.push_back(child);
  }
  return visible;
}

/// The visible descendants of a widget from top to bottom. They have the same parent.
template <typename Widget>
std::vector<Widget*> visibleColumn(const QWidget& parent) {
  std::vector<Widget*> column = visibleChildren<Widget>(parent);
  std::sort(column.begin(), column.end(),
            [](const Widget* first, const Widget* second) { return first->y() < second->y(); });
  return column;
}

}  // namespace

PopoverFixture::PopoverFixture()
    : preferences(std::make_unique<Preferences>(folder.filePath(QStringLiteral("preferences.ini")))) {}

PopoverFixture::~PopoverFixture() {
  view.reset();
  if (model) finishSweep();
}

void PopoverFixture::add(const FakeApplication& application) {
  const bool isBundle = application.name.ends_with(".app");
  std::int32_t pid = application.firstPID;
  for (const std::uint64_t footprint : application.footprints) {
    const std::string path =
        isBundle ? "/Applications/" + application.name + "/Contents/part" + std::to_string(pid)
                 : "/usr/bin/" + application.name;
    machine.processes.push_back(
        {.pid = pid, .path = path, .usage = ProcessUsage{.footprint = footprint, .cpuTime = 0}});
    ++pid;
  }
}

void PopoverFixture::setFootprint(std::int32_t pid, std::uint64_t footprint) {
  machine.process(pid).usage->footprint = footprint;
}

void PopoverFixture::start() {
  model =
      MonitorViewModel::create({.mainLoop = loop,
                                .makeQueue = [this](const std::string& label) { return queues.make(label); },
                                .sampler = samplerPortOf(machine),
                                .extras = extras.port(),
                                .pressureLevel = [this] { return pressureLevel; },
                                .pressureSource = std::make_unique<FakePressureSource>(pressure),
                                .frontmostApplication = [] { return std::nullopt; },
                                .activeProcessorCount = [this] { return cores; }});
}

void PopoverFixture::finishSweep() {
  queues["com.tarn.sampler"].runAll();
  loop.tasks.runAll();
}

void PopoverFixture::sweep() {
  if (model) {
    finishSweep();
    loop.advance(loop.timers.back()->interval);
    loop.tasks.runAll();
  } else {
    start();
  }
  finishSweep();
  settle();
}

std::vector<double> PopoverFixture::timerIntervals() const {
  std::vector<double> intervals;
  for (const auto& timer : loop.timers) intervals.push_back(timer->interval);
  return intervals;
}

PopoverView& PopoverFixture::makeView() {
  if (!model) start();
  const auto loadIcon = [this](const std::string& path) {
    loadedIcons.push_back(path);
    return plainIcon();
  };
  view = std::make_unique<PopoverView>(
      model, *preferences, plainFormatters(), loadIcon,
      Vendor{QStringLiteral("tarn.example"), QStringLiteral("https://tarn.example")});
  return *view;
}

PopoverView& PopoverFixture::showView(const Theme& theme) {
  makeView().setPalette(theme.palette());
  view->show();
  settle();
  return *view;
}

void PopoverFixture::settle() {
  // A layout change deep in the widget tree reaches the window one level per iteration.
  constexpr int iterations = 10;
  for (int iteration = 0; iteration < iterations; ++iteration) {
    QCoreApplication::processEvents();
    for (QWidget* window : QApplication::topLevelWidgets()) {
      const bool isView = qobject_cast<PopoverView*>(window) != nullptr;
      if (isView) window->resize(window->width(), window->layout()->totalHeightForWidth(window->width()));
    }
  }
}

QRect frameIn(const QWidget& ancestor, const QWidget& widget) {
  return {widget.mapTo(&ancestor, QPoint(0, 0)), widget.size()};
}

std::vector<AppRow*> shownRows(const QWidget& view) {
  return visibleColumn<AppRow>(view);
}

AppRow* rowNamed(const QWidget& view, const QString& name) {
  for (AppRow* row : shownRows(view)) {
    if (labelsOf(*row->button()).front()->text() == name) return row;
  }
  return nullptr;
}

std::vector<QLabel*> labelsOf(const QWidget& widget) {
  return visibleChildren<QLabel>(widget);
}

std::vector<QRect> dividersOf(const QWidget& view) {
  std::vector<QRect> frames;
  for (const Divider* divider : visibleChildren<Divider>(view)) frames.push_back(frameIn(view, *divider));
  std::sort(frames.begin(), frames.end(),
            [](const QRect& first, const QRect& second) { return first.y() < second.y(); });
  return frames;
}

QLabel* labelWithText(const QWidget& widget, const QString& text) {
  for (QLabel* label : labelsOf(widget)) {
    if (label->text() == text) return label;
  }
  return nullptr;
}

std::vector<ProcessLineView*> linesOf(const AppRow& row) {
  return visibleColumn<ProcessLineView>(row);
}

void click(QWidget& widget) {
  QTest::mouseClick(&widget, Qt::LeftButton);
  PopoverFixture::settle();
}

void pressKey(QWidget& widget, Qt::Key key) {
  QTest::keyClick(&widget, key);
  PopoverFixture::settle();
}

void addThree(PopoverFixture& fixture) {
  fixture.add({"Editor.app", 100, {400 * megabyte, 100 * megabyte}});
  fixture.add({"Mail.app", 200, {300 * megabyte, 5 * megabyte}});
  fixture.add({"Files.app", 300, {90 * megabyte}});
}

PopoverView& showThree(PopoverFixture& fixture) {
  addThree(fixture);
  fixture.sweep();
  return fixture.showView();
}

void addMany(PopoverFixture& fixture, int count) {
  for (int i = 0; i < count; ++i) {
    const auto size = static_cast<std::uint64_t>(count - i) * 10 * megabyte;
    fixture.add({"App" + std::to_string(i) + ".app", 1000 + i, {size}});
  }
}

std::vector<QString> namesOf(const QWidget& view) {
  std::vector<QString> names;
  for (const AppRow* row : shownRows(view)) names.push_back(labelsOf(*row->button()).front()->text());
  return names;
}

void selectTab(const QWidget& view, const QString& tab) {
  for (TabSegment* segment : view.findChildren<TabSegment*>()) {
    if (segment->text() == tab) segment->click();
  }
  PopoverFixture::settle();
}

}  // namespace tarn
