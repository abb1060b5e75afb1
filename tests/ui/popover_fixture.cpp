// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/popover_fixture.hpp"

#include <QApplication>
#include <QEvent>
#include <QKeyEvent>
#include <QLayout>
#include <QMouseEvent>
#include <QPixmap>
#include <algorithm>
#include <utility>

#include "ui/widgets/controls.hpp"

namespace tarn {

namespace {

QIcon plainIcon() {
  QPixmap pixmap(32, 32);
  pixmap.fill(QColor(Qt::blue));
  return pixmap;
}

}  // namespace

PopoverStage::PopoverStage()
    : preferences(std::make_unique<Preferences>(folder.filePath(QStringLiteral("preferences.ini")))) {}

PopoverStage::~PopoverStage() {
  view.reset();
  if (model) finishSweep();
}

void PopoverStage::add(const StagedApplication& application) {
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

void PopoverStage::setFootprint(std::int32_t pid, std::uint64_t footprint) {
  machine.process(pid).usage->footprint = footprint;
}

void PopoverStage::start() {
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

void PopoverStage::finishSweep() {
  queues["com.tarn.sampler"].runAll();
  loop.tasks.runAll();
}

void PopoverStage::sweep() {
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

std::vector<double> PopoverStage::timerIntervals() const {
  std::vector<double> intervals;
  for (const auto& timer : loop.timers) intervals.push_back(timer->interval);
  return intervals;
}

PopoverView& PopoverStage::makeView() {
  if (!model) start();
  const auto loadIcon = [this](const std::string& path) {
    loadedIcons.push_back(path);
    return plainIcon();
  };
  view = std::make_unique<PopoverView>(
      model, *preferences, loadIcon,
      Vendor{QStringLiteral("tarn.example"), QStringLiteral("https://tarn.example")});
  return *view;
}

PopoverView& PopoverStage::showView(const Theme& theme) {
  makeView().setPalette(theme.palette());
  view->show();
  settle();
  return *view;
}

void PopoverStage::settle() {
  // A change deep in the tree climbs to the window one layout per turn.
  constexpr int turns = 10;
  for (int turn = 0; turn < turns; ++turn) {
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
  std::vector<AppRow*> rows;
  for (AppRow* row : view.findChildren<AppRow*>()) {
    if (row->isVisible()) rows.push_back(row);
  }
  std::sort(rows.begin(), rows.end(),
            [](const AppRow* one, const AppRow* other) { return one->y() < other->y(); });
  return rows;
}

AppRow* rowNamed(const QWidget& view, const QString& name) {
  for (AppRow* row : shownRows(view)) {
    if (labelsOf(*row->button()).front()->text() == name) return row;
  }
  return nullptr;
}

std::vector<QLabel*> labelsOf(const QWidget& widget) {
  std::vector<QLabel*> labels;
  for (QLabel* label : widget.findChildren<QLabel*>()) {
    if (label->isVisible()) labels.push_back(label);
  }
  return labels;
}

std::vector<QRect> dividersOf(const QWidget& view) {
  std::vector<QRect> frames;
  for (const Divider* divider : view.findChildren<Divider*>()) {
    if (divider->isVisible()) frames.push_back(frameIn(view, *divider));
  }
  std::sort(frames.begin(), frames.end(),
            [](const QRect& one, const QRect& other) { return one.y() < other.y(); });
  return frames;
}

QLabel* labelWithText(const QWidget& widget, const QString& text) {
  for (QLabel* label : labelsOf(widget)) {
    if (label->text() == text) return label;
  }
  return nullptr;
}

std::vector<ProcessLineView*> linesOf(const AppRow& row) {
  std::vector<ProcessLineView*> lines;
  for (ProcessLineView* line : row.findChildren<ProcessLineView*>()) {
    if (line->isVisible()) lines.push_back(line);
  }
  std::sort(lines.begin(), lines.end(),
            [](const auto* one, const auto* other) { return one->y() < other->y(); });
  return lines;
}

void click(QWidget& widget) {
  const QPointF position = QRectF(widget.rect()).center();
  const QPointF global = widget.mapToGlobal(position);
  QMouseEvent press(QEvent::MouseButtonPress, position, global, Qt::LeftButton, Qt::LeftButton,
                    Qt::NoModifier);
  QCoreApplication::sendEvent(&widget, &press);
  QMouseEvent release(QEvent::MouseButtonRelease, position, global, Qt::LeftButton, Qt::NoButton,
                      Qt::NoModifier);
  QCoreApplication::sendEvent(&widget, &release);
  PopoverStage::settle();
}

void pressKey(QWidget& widget, Qt::Key key) {
  QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
  QCoreApplication::sendEvent(&widget, &press);
  QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier);
  QCoreApplication::sendEvent(&widget, &release);
  PopoverStage::settle();
}

void addThree(PopoverStage& stage) {
  stage.add({"Editor.app", 100, {400 * megabyte, 100 * megabyte}});
  stage.add({"Mail.app", 200, {300 * megabyte, 5 * megabyte}});
  stage.add({"Files.app", 300, {90 * megabyte}});
}

void addMany(PopoverStage& stage, int count) {
  for (int i = 0; i < count; ++i) {
    const auto size = static_cast<std::uint64_t>(count - i) * 10 * megabyte;
    stage.add({"App" + std::to_string(i) + ".app", 1000 + i, {size}});
  }
}

std::vector<QString> namesOf(const QWidget& view) {
  std::vector<QString> names;
  for (const AppRow* row : shownRows(view)) names.push_back(labelsOf(*row->button()).front()->text());
  return names;
}

void choose(const QWidget& view, const QString& tab) {
  for (TabSegment* segment : view.findChildren<TabSegment*>()) {
    if (segment->text() == tab) segment->click();
  }
  PopoverStage::settle();
}

}  // namespace tarn
