// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "app/tarn_app.hpp"

#include <QApplication>
#include <QEvent>
#include <QEventLoop>
#include <QIcon>
#include <QPalette>
#include <QPixmap>
#include <QScreen>
#include <QTimer>
#include <chrono>
#include <cstdio>
#include <utility>

#include "monitor/concurrency.hpp"
#include "ui/menu_bar/menu_bar_label.hpp"
#include "ui/popover/accessibility.hpp"
#include "ui/popover/popover_placement.hpp"

namespace tarn {

namespace {

/// The first sweep costs as much as the start of the program, so it waits until the item is shown. This is
/// the longest wait.
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

/// How the popover's window behaves while the item is in the menu bar.
PopoverStyle styleOn(const WindowCapabilities& capabilities) {
  return capabilities.clientsPlaceWindows && capabilities.popupsTakeKeys ? PopoverStyle::popup
                                                                         : PopoverStyle::tool;
}

/// Applies settings for all windows. Called before the first window is created, not at the start of the
/// program, so that the item appears sooner.
void prepareForWindows() {
  QApplication::setStyle(QStringLiteral("Fusion"));
  QIcon::setFallbackThemeName(QStringLiteral("Adwaita"));
}

/// The icon that window managers show beside the title of a regular window.
QIcon windowIcon() {
  constexpr int size = 64;  // pixels
  return QPixmap::fromImage(
      MenuBarIcon::image(QStringLiteral("circle"), MenuBarIcon::color(Tint::green), size));
}

bool isPlausibleOnItsScreen(const QPoint& point) {
  const QScreen* screen = QGuiApplication::screenAt(point);
  return screen != nullptr && isPlausibleAnchor(point, {screen->geometry(), screen->availableGeometry()});
}

/// Where the popover opens. Some hosts report a wrong position of the click, so the position of the pointer
/// is preferred. nullopt when neither position is plausible.
std::optional<QPoint> findAnchor(const std::optional<QPoint>& reported, const WindowSystemState& state) {
  if (state.capabilities.clickPositionIsExact && reported) return reported;
  if (state.capabilities.clientsPlaceWindows && state.pointer && isPlausibleOnItsScreen(*state.pointer))
    return state.pointer;
  if (reported && isPlausibleOnItsScreen(*reported)) return reported;
  return std::nullopt;
}

bool isDark(const QPalette& palette) {
  return palette.color(QPalette::Window).lightness() < 128;
}

void describeProgram(const Platform& platform) {
  QCoreApplication::setApplicationName(QStringLiteral("tarn"));
  // On macOS QSettings combines the two names into "com.tarn.tarn", the bundle's identifier.
  QCoreApplication::setOrganizationName(QStringLiteral("tarn"));
  QCoreApplication::setApplicationVersion(platform.version().value_or(QString()));
  QGuiApplication::setApplicationDisplayName(QStringLiteral("Tarn"));
  QGuiApplication::setDesktopFileName(QStringLiteral(TARN_APPLICATION_ID));
  QApplication::setQuitOnLastWindowClosed(false);
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
  connectItem();
  // Qt sends ApplicationPaletteChange to the application object.
  QCoreApplication::instance()->installEventFilter(this);
  renderLabel();
}

TarnApp::~TarnApp() {
  model_->startSweeping();
  popover_.reset();
  item_.reset();
  // A sweep in flight keeps the view model alive and posts its result to runLoop_.
  const std::weak_ptr<MonitorViewModel> inFlight = std::exchange(model_, nullptr);
  while (!inFlight.expired()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

void TarnApp::connectItem() {
  connect(item_.get(), &MenuBarItem::activated, this, &TarnApp::togglePopover);
  connect(item_.get(), &MenuBarItem::openRequested, this, &TarnApp::openPopoverAtPointer);
  connect(item_.get(), &MenuBarItem::quitRequested, this, [this] { platform_.terminate(); });
  connect(item_.get(), &MenuBarItem::hostAppeared, model_.get(), &MonitorViewModel::startSweeping);
  connect(item_.get(), &MenuBarItem::hostAppeared, this, &TarnApp::hideRegularWindow);
  connect(item_.get(), &MenuBarItem::hostMissing, this, &TarnApp::showRegularWindow);
  connect(&itemTimeout_, &QTimer::timeout, model_.get(), &MonitorViewModel::startSweeping);
  itemTimeout_.setSingleShot(true);
  itemTimeout_.start(longestWaitForItem);
}

bool TarnApp::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::ApplicationPaletteChange && watched == QCoreApplication::instance())
    applyTheme();
  return QObject::eventFilter(watched, event);
}

void TarnApp::renderLabel() {
  if (!item_) return;
  MenuBarLabel label =
      menuBarLabel(model_->presentation(), model_->snapshot(), prefs_.showFrontmostFootprint(),
                   model_->frontmostFootprint(), platform_.formatters());
  label.toolTip = throttledToolTip(sentToolTip_, label.toolTip, popover_ && popover_->isVisible());
  sentToolTip_ = label.toolTip;
  item_->show(label);
}

PopoverWindow& TarnApp::popover() {
  if (!popover_) createPopover();
  return *popover_;
}

void TarnApp::createPopover() {
  model_->startSweeping();
  prepareForWindows();
  auto* view =
      new PopoverView(model_, prefs_, platform_.formatters(), platform_.makeFileIconLoader(), vendor());
  popover_ = std::make_unique<PopoverWindow>(view, platform_.makeCompositorPlacement());
  connect(view, &PopoverView::quitRequested, this, [this] { platform_.terminate(); });
  connect(view, &PopoverView::urlRequested, this, platform_.makeUrlOpener());
  connect(popover_.get(), &PopoverWindow::closed, this, &TarnApp::finishClosing);
  // Queued, so that the window frees its memory first.
  const auto releaseFreeHeap = [this] { platform_.releaseFreeHeap(); };
  connect(popover_.get(), &PopoverWindow::closed, this, releaseFreeHeap, Qt::QueuedConnection);
  workspaceWatch_ = platform_.watchWorkspaces([this] {
    if (popover_ && popover_->isVisible() && !isRegularWindow()) popover_->close();
  });
  applyTheme();
}

bool TarnApp::isRegularWindow() const {
  return popover_ && popover_->style() == PopoverStyle::regular;
}

void TarnApp::finishClosing() {
  // Without an item in the menu bar the window is the only way to reach Tarn.
  if (isRegularWindow()) platform_.terminate();
  labelRenderer_.schedule();
}

void TarnApp::applyTheme() {
  if (!popover_) return;
  const ColorScheme fallback = isDark(QGuiApplication::palette()) ? ColorScheme::dark : ColorScheme::light;
  const ColorScheme scheme = colorScheme_->preference().value_or(fallback);
  popover_->setTheme(scheme == ColorScheme::dark ? Theme::dark() : Theme::light());
}

void TarnApp::openPopover() {
  if (model_) openPopoverAt(std::nullopt, platform_.windowSystemState());
}

void TarnApp::openPopoverAtPointer() {
  const WindowSystemState state = platform_.windowSystemState();
  openPopoverAt(findAnchor(std::nullopt, state), state);
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

void TarnApp::togglePopover(std::optional<QPoint> position) {
  // A click proves that a host shows the item, even after hostMissing.
  hideRegularWindow();
  const WindowSystemState state = platform_.windowSystemState();
  popover().toggle(styleOn(state.capabilities), {findAnchor(position, state), state.windowUnderPointer},
                   state.capabilities);
}

void TarnApp::showRegularWindow() {
  std::fputs("tarn: no menu bar shows status items here; Tarn stays in a window of its own until one does.\n",
             stderr);
  hasMenuBar_ = false;
  popover().setWindowIcon(windowIcon());
  popover().open(PopoverStyle::regular, {}, platform_.windowSystemState().capabilities);
}

void TarnApp::hideRegularWindow() {
  hasMenuBar_ = true;
  if (!isRegularWindow()) return;
  popover_->hide();  // close() would end the program
  labelRenderer_.schedule();
}

int runTarn(int argc, char* argv[], Platform& platform) {
  platform.limitAllocatorArenas();
  describeProgram(platform);
  if (const auto problem = platform.displayProblem()) {
    std::fprintf(stderr, "tarn: %s; Tarn needs one to show itself.\n", qPrintable(*problem));
    return 1;
  }
  const QApplication application(argc, argv);
  const auto terminationSignals = platform.watchTerminationSignals();
  installAccessibility();

  TarnApp* running = nullptr;
  const auto instance = platform.makeSingleInstance();
  const auto launchedAgain = [&running] {
    if (running != nullptr) running->openPopover();
  };
  if (!instance->claim(launchedAgain)) return 0;
  TarnApp tarn(platform);
  running = &tarn;
  return QApplication::exec();
}

}  // namespace tarn
