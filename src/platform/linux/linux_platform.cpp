// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/linux_platform.hpp"

#include <QtGui/qguiapplication_platform.h>
#include <malloc.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <QByteArray>
#include <QCoreApplication>
#include <QCursor>
#include <QDBusConnection>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QUrl>
#include <algorithm>
#include <chrono>
#include <utility>

#include "platform/icu/icu_formatters.hpp"
#include "platform/linux/app_identity/linux_sampler_port.hpp"
#include "platform/linux/dbus/bus_single_instance.hpp"
#include "platform/linux/dbus/portals.hpp"
#include "platform/linux/dbus/session_bus.hpp"
#include "platform/linux/file_icon.hpp"
#include "platform/linux/psi/psi_pressure_source.hpp"
#include "platform/linux/status_notifier/panel_item.hpp"
#include "platform/linux/sysfs/linux_extras_port.hpp"
#include "platform/linux/termination_signals.hpp"
#include "platform/linux/wayland/compositor_frontmost.hpp"
#include "platform/linux/wayland/compositor_ipc.hpp"
#include "platform/linux/wayland/compositor_placement.hpp"
#include "platform/linux/x11/x11_qt_connection.hpp"
#include "platform/linux/x11/x11_session.hpp"

namespace tarn {

namespace {

constexpr auto trayTimeout = std::chrono::milliseconds(50);

bool reachesX11() {
  if (qgetenv("DISPLAY").isEmpty()) return false;
  xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
  const bool reached = xcb_connection_has_error(connection) == 0;
  xcb_disconnect(connection);
  return reached;
}

QByteArray waylandSocketPath() {
  QByteArray display = qgetenv("WAYLAND_DISPLAY");
  if (display.isEmpty() || display.startsWith('/')) return display;
  return qgetenv("XDG_RUNTIME_DIR") + '/' + display;
}

bool reachesWayland() {
  const QByteArray path = waylandSocketPath();
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.isEmpty() || path.size() >= static_cast<qsizetype>(sizeof address.sun_path)) return false;
  std::copy(path.begin(), path.end(), std::begin(address.sun_path));
  const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (socket < 0) return false;
  const bool reached = connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  close(socket);
  return reached;
}

/// Why neither an X11 nor a Wayland display can be reached, as a clause without a full stop; nullopt when one
/// can, or when QT_QPA_PLATFORM selects a platform that needs neither. Used before QApplication exists.
std::optional<QString> findDisplayProblem() {
  // The user selected another Qt platform plugin; Qt itself reports whether it works.
  const QByteArray selectedPlugin = qgetenv("QT_QPA_PLATFORM");
  if (!selectedPlugin.isEmpty() && !selectedPlugin.startsWith("xcb") && !selectedPlugin.startsWith("wayland"))
    return std::nullopt;
  const bool acceptsX11 = selectedPlugin.isEmpty() || selectedPlugin.startsWith("xcb");
  const bool acceptsWayland = selectedPlugin.isEmpty() || selectedPlugin.startsWith("wayland");
  if ((acceptsX11 && reachesX11()) || (acceptsWayland && reachesWayland())) return std::nullopt;
  const QByteArray display = qgetenv("DISPLAY");
  const QByteArray wayland = qgetenv("WAYLAND_DISPLAY");
  if (display.isEmpty() && wayland.isEmpty()) {
    return QStringLiteral("there is no display here (neither DISPLAY nor WAYLAND_DISPLAY is set)");
  }
  return QStringLiteral("the display %1 cannot be reached")
      .arg(QString::fromLocal8Bit(display.isEmpty() ? wayland : display));
}

bool runsOnX11() {
  return QGuiApplication::platformName() == u"xcb";
}

bool runsOnWayland() {
  return QGuiApplication::platformName().startsWith(u"wayland");
}

/// Qt's connection to the X server; null on other window systems.
xcb_connection_t* x11Connection() {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  return x11 == nullptr ? nullptr : x11->connection();
}

/// Moves `service`, which was made for the session bus, to every session bus that appears later.
template <typename Service>
void followSessionBus(Service* service) {
  auto* const bus = new SessionBus(QDBusConnection::sessionBus(), sessionBusAddress(), service);
  QObject::connect(bus, &SessionBus::appeared, service,
                   [service, bus] { service->moveTo(bus->connection()); });
}

/// Claims the instance's name again on every session bus that appears later; quits if another process owns
/// the name there.
class SessionSingleInstance final : public SingleInstance {
 public:
  SessionSingleInstance() {
    QObject::connect(&bus_, &SessionBus::appeared, &bus_,
                     [this] { instance_.claimAgain(bus_.connection(), QCoreApplication::quit); });
  }

  bool claim(std::function<void()> launchedAgain) override {
    return instance_.claim(std::move(launchedAgain));
  }

 private:
  SessionBus bus_{QDBusConnection::sessionBus(), sessionBusAddress()};
  BusSingleInstance instance_{bus_.connection()};
};

}  // namespace

void LinuxPlatform::limitAllocatorArenas() {
  // mallopt(3): by default each thread gets a separate arena, and free memory at the top of the heap is
  // returned late. Tarn's threads allocate rarely, so one arena is enough.
  constexpr int trimThreshold = 64 << 10;  // bytes
  constexpr int topPad = 16 << 10;         // bytes
  mallopt(M_ARENA_MAX, 1);
  mallopt(M_TRIM_THRESHOLD, trimThreshold);
  mallopt(M_TOP_PAD, topPad);
}

std::optional<QString> LinuxPlatform::version() const {
  return QStringLiteral(TARN_VERSION);
}

std::optional<QString> LinuxPlatform::displayProblem() const {
  return findDisplayProblem();
}

std::unique_ptr<SingleInstance> LinuxPlatform::makeSingleInstance() {
  return std::make_unique<SessionSingleInstance>();
}

std::unique_ptr<QObject> LinuxPlatform::watchTerminationSignals() {
  return std::make_unique<TerminationSignals>([this] { terminate(); });
}

void LinuxPlatform::terminate() {
  QCoreApplication::quit();
}

void LinuxPlatform::releaseFreeHeap() {
  malloc_trim(0);
}

SamplerPort LinuxPlatform::makeSamplerPort() {
  return makeLinuxSamplerPort(LinuxRoots{});
}

ExtrasPort LinuxPlatform::makeExtrasPort() {
  return linuxExtrasPort(LinuxRoots{});
}

std::unique_ptr<PressureSource> LinuxPlatform::makePressureSource() {
  return std::make_unique<PsiPressureSource>(LinuxRoots{});
}

std::optional<std::int32_t> LinuxPlatform::pressureLevel() const {
  return readPressureLevel(LinuxRoots{});
}

FrontmostApplicationSource LinuxPlatform::makeFrontmostApplicationSource() {
  // An X server that runs under Wayland (Xwayland) reports only the windows of its own clients.
  if (runsOnX11()) return x11FrontmostApplication(std::make_shared<X11Session>());
  if (const std::string sway = swaySocket(); !sway.empty()) return swayFrontmostApplication(sway);
  if (const std::string hyprland = hyprlandSocket(); !hyprland.empty())
    return hyprlandFrontmostApplication(hyprland);
  return [] { return std::optional<FrontmostApplication>(); };
}

int LinuxPlatform::activeProcessorCount() const {
  return countCoresOnline(LinuxRoots{});
}

void LinuxPlatform::setCurrentThreadName(const std::string& name) const {
  prctl(PR_SET_NAME, name.c_str());  // prctl(2): the kernel keeps the first 15 bytes
}

Formatters LinuxPlatform::formatters() const {
  return icuFormatters();
}

std::unique_ptr<MenuBarItem> LinuxPlatform::makeMenuBarItem() {
  PanelItemDesktop desktop{QDBusConnection::sessionBus(), runningProgramName, {}};
  desktop.releaseMemory = [this] { releaseFreeHeap(); };
  if (runsOnX11()) {
    desktop.hasXembedTray = [session = std::make_shared<X11Session>()] {
      return session->hasXembedTray(X11Session::Clock::now() + trayTimeout);
    };
  }
  auto item = std::make_unique<PanelItem>(std::move(desktop));
  followSessionBus(item.get());
  return item;
}

std::unique_ptr<ColorSchemeWatcher> LinuxPlatform::makeColorSchemeWatcher() {
  auto scheme = std::make_unique<PortalColorScheme>(QDBusConnection::sessionBus());
  followSessionBus(scheme.get());
  return scheme;
}

FileIconLoader LinuxPlatform::makeFileIconLoader() {
  return applicationIcon;
}

UrlOpener LinuxPlatform::makeUrlOpener() {
  auto portal = std::make_shared<PortalUrlOpener>(
      QDBusConnection::sessionBus(), [](const QString& url) { QDesktopServices::openUrl(QUrl(url)); });
  followSessionBus(portal.get());
  return [portal = std::move(portal)](const QString& url) { portal->open(url); };
}

WindowSystemState LinuxPlatform::windowSystemState() const {
  if (xcb_connection_t* const x11 = x11Connection()) {
    const X11ClickState state = queryX11ClickState(x11, screenScales());
    return {.capabilities = {.clientsPlaceWindows = true, .blendsWindows = state.hasCompositor},
            .pointer = state.pointer,
            .windowUnderPointer = state.windowUnderPointer};
  }
  if (runsOnWayland()) return {.capabilities = {.clientsPlaceWindows = false, .blendsWindows = true}};
  return {.pointer = QCursor::pos()};
}

std::unique_ptr<CompositorPlacement> LinuxPlatform::makeCompositorPlacement() {
  if (!runsOnWayland()) return nullptr;
  if (std::string sway = swaySocket(); !sway.empty()) return swayPlacement(std::move(sway));
  if (std::string hyprland = hyprlandSocket(); !hyprland.empty())
    return hyprlandPlacement(std::move(hyprland));
  return nullptr;
}

std::unique_ptr<QObject> LinuxPlatform::watchWorkspaces(std::function<void()> switched) {
  // On Wayland a change of workspace takes the focus from the popover, which closes it.
  xcb_connection_t* const x11 = x11Connection();
  if (x11 == nullptr) return nullptr;
  return std::make_unique<X11WorkspaceWatch>(x11, std::move(switched));
}

}  // namespace tarn
