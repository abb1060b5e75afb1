// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "app/tarn_app.hpp"

#include <QApplication>
#include <QCursor>
#include <QEvent>
#include <QEventLoop>
#include <QIcon>
#include <QPixmap>
#include <QScreen>
#include <QTimer>
#include <chrono>
#include <cstdio>
#include <utility>

#include "monitor/concurrency.hpp"
#include "ui/menu_bar/menu_bar_icon.hpp"
#include "ui/popover/popover_placement.hpp"

namespace tarn {

namespace {

/// The first sweep costs as much as the start of the program: it waits until the item is shown, at most so
/// long.
constexpr std::chrono::seconds longestWaitForItem{1};

/// Returns an inactive queue. `MonitorViewModel::startSweeping` activates it.
std::unique_ptr<TaskQueue> makeNamedQueue(const Platform& platform, const std::string& label) {
  auto queue = std::make_unique<SerialQueue>(SerialQueue::Start::inactive);
  queue->async([&platform, label] { platform.setCurrentThreadName(label); });
  return queue;
}

MonitorPorts makeMonitorPorts(Platform& platform, RunLoop& mainLoop) {
  return {.mainLoop = mainLoop,
          .makeQueue = [&platform](const std::string& label) { return makeNamedQueue(platform, label); },
          .sampler = platform.makeSamplerPort(),
          .extras = platform.makeExtrasPort(),
          .pressureLevel = [&platform] { return platform.pressureLevel(); },
          .pressureSource = platform.makePressureSource(),
          .frontmostApplication = platform.makeFrontmostApplicationSource(),
          .activeProcessorCount = [&platform] { return platform.activeProcessorCount(); }};
}

Vendor vendor() {
  const QString address = QStringLiteral(TARN_VENDOR_ADDRESS);
  return {address, QStringLiteral("https://") + address};
}

PopoverStyle styleOn(const WindowCapabilities& capabilities) {
  return capabilities.clientsPlaceWindows && capabilities.popupsTakeKeys ? PopoverStyle::popup
                                                                         : PopoverStyle::tool;
}

/// What only windows need: the item is there sooner without it.
void prepareForWindows() {
  QApplication::setStyle(QStringLiteral("Fusion"));
  QIcon::setFallbackThemeName(QStringLiteral("Adwaita"));
}

/// The icon that window managers show beside the title of an ordinary window.
QIcon windowIcon() {
  constexpr int size = 64;  // pixels
  return QPixmap::fromImage(
      MenuBarIcon::image(QStringLiteral("circle"), MenuBarIcon::color(Tint::green), size));
}

/// The menu-bar item's position. Some hosts report a wrong position, so the pointer's position is preferred.
std::optional<QPoint> clickAnchor(const std::optional<QPoint>& position, const WindowSystemState& state) {
  const auto isPlausible = [](const QPoint& point) {
    const QScreen* screen = QGuiApplication::screenAt(point);
    return screen != nullptr && isPlausibleAnchor(point, {screen->geometry(), screen->availableGeometry()});
  };
  if (state.capabilities.hostKnowsItsPlace && position) return position;
  if (state.capabilities.clientsPlaceWindows && state.pointer && isPlausible(*state.pointer))
    return state.pointer;
  if (position && isPlausible(*position)) return position;
  return std::nullopt;
}

}  // namespace

TarnApp::TarnApp(Platform& platform)
    : platform_(platform),
      model_(MonitorViewModel::create(makeMonitorPorts(platform, runLoop_))),
      colorScheme_(platform.makeColorSchemeWatcher()),
      item_(platform.makeMenuBarItem()),
      labelRenderer_([this] { renderLabel(); }) {
  connect(model_.get(), &MonitorViewModel::willChange, &labelRenderer_, &RenderScheduler::schedule);
  connect(&prefs_, &Preferences::willChange, &labelRenderer_, &RenderScheduler::schedule);
  connect(colorScheme_.get(), &ColorSchemeWatcher::changed, this, &TarnApp::applyTheme);
  connect(item_.get(), &MenuBarItem::activated, this, &TarnApp::itemClicked);
  connect(item_.get(), &MenuBarItem::openRequested, this, [this] {
    const WindowSystemState state = platform_.windowSystemState();
    openPopoverAt(clickAnchor(std::nullopt, state), state);
  });
  connect(item_.get(), &MenuBarItem::quitRequested, this, [this] { platform_.terminate(); });
  connect(item_.get(), &MenuBarItem::hostAppeared, model_.get(), &MonitorViewModel::startSweeping);
  QTimer::singleShot(longestWaitForItem, model_.get(), &MonitorViewModel::startSweeping);
  connect(item_.get(), &MenuBarItem::hostMissing, this, &TarnApp::showWithoutMenuBar);
  connect(item_.get(), &MenuBarItem::hostAppeared, this, &TarnApp::leaveForMenuBar);
  // The filter sees the application's palette change, of which nobody else is told.
  QCoreApplication::instance()->installEventFilter(this);
  renderLabel();
}

TarnApp::~TarnApp() {
  model_->startSweeping();
  popover_.reset();
  item_.reset();
  // From here on there is nothing to render to, and soon nothing to render.
  const std::weak_ptr<MonitorViewModel> inFlight = std::exchange(model_, nullptr);
  while (!inFlight.expired()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

bool TarnApp::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::ApplicationPaletteChange && watched == QCoreApplication::instance())
    applyTheme();
  return QObject::eventFilter(watched, event);
}

void TarnApp::renderLabel() {
  if (!item_) return;
  MenuBarLabel label = menuBarLabel(model_->presentation(), model_->snapshot(),
                                    prefs_.showFrontmostFootprint(), model_->frontmostFootprint());
  label.hover = hoverToTell(toldHover_, label.hover, popover_ && popover_->isVisible());
  toldHover_ = label.hover;
  item_->show(label);
}

PopoverWindow& TarnApp::popover() {
  if (!popover_) {
    model_->startSweeping();
    prepareForWindows();
    auto* view = new PopoverView(model_, prefs_, platform_.makeFileIconLoader(), vendor());
    popover_ = std::make_unique<PopoverWindow>(view, platform_.makeCompositorPlacement());
    connect(view, &PopoverView::quitRequested, this, [this] { platform_.terminate(); });
    connect(view, &PopoverView::urlRequested, this, platform_.makeUrlOpener());
    connect(popover_.get(), &PopoverWindow::closed, this, [this] {
      // Without a menu bar this window is all there is of Tarn: closing it ends the program.
      if (popover_->style() == PopoverStyle::regular) platform_.terminate();
      labelRenderer_.schedule();
    });
    workspaceWatch_ = platform_.watchWorkspaces([this] {
      const bool isPopover = popover_ && popover_->isVisible() && popover_->style() != PopoverStyle::regular;
      if (isPopover) popover_->close();
    });
    // Once the window has let go of its own.
    connect(
        popover_.get(), &PopoverWindow::closed, this, [this] { platform_.releaseFreeHeap(); },
        Qt::QueuedConnection);
    applyTheme();
  }
  return *popover_;
}

void TarnApp::applyTheme() {
  if (!popover_) return;
  const bool paletteIsDark = QGuiApplication::palette().color(QPalette::Window).lightness() < 128;
  const ColorScheme scheme =
      colorScheme_->preference().value_or(paletteIsDark ? ColorScheme::dark : ColorScheme::light);
  popover_->setTheme(scheme == ColorScheme::dark ? Theme::dark() : Theme::light());
}

void TarnApp::openPopover() {
  if (model_) openPopoverAt(std::nullopt, platform_.windowSystemState());
}

void TarnApp::openPopoverAt(std::optional<QPoint> anchor, const WindowSystemState& state) {
  if (popover().isVisible()) {
    popover().raise();
    popover().activateWindow();
    return;
  }
  const PopoverStyle style = hasMenuBar_ ? styleOn(state.capabilities) : PopoverStyle::regular;
  popover().open(style, {anchor, state.windowUnderPointer}, state.capabilities);
}

void TarnApp::itemClicked(std::optional<QPoint> position) {
  // A click proves that a host shows the item, even after hostMissing.
  leaveForMenuBar();
  const WindowSystemState state = platform_.windowSystemState();
  popover().toggle(styleOn(state.capabilities), {clickAnchor(position, state), state.windowUnderPointer},
                   state.capabilities);
}

void TarnApp::showWithoutMenuBar() {
  std::fputs("tarn: no menu bar shows status items here; Tarn stays in a window of its own until one does.\n",
             stderr);
  hasMenuBar_ = false;
  popover().setWindowIcon(windowIcon());
  popover().open(PopoverStyle::regular, {}, platform_.windowSystemState().capabilities);
}

void TarnApp::leaveForMenuBar() {
  hasMenuBar_ = true;
  if (!popover_ || popover_->style() != PopoverStyle::regular) return;
  popover_->hide();  // not closed: that would end the program
  labelRenderer_.schedule();
}

}  // namespace tarn
