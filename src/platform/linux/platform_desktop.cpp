// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <QtGui/qguiapplication_platform.h>
#include <malloc.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QUrl>
#include <chrono>
#include <functional>
#include <memory>
#include <utility>

#include "app/page_opener.hpp"
#include "app/program.hpp"
#include "app/single_instance.hpp"
#include "monitor/frontmost_application.hpp"
#include "platform/linux/dbus/bus_single_instance.hpp"
#include "platform/linux/dbus/portals.hpp"
#include "platform/linux/dbus/session_bus.hpp"
#include "platform/linux/status_notifier/panel_item.hpp"
#include "platform/linux/termination_signals.hpp"
#include "platform/linux/wayland/compositor_frontmost.hpp"
#include "platform/linux/wayland/compositor_ipc.hpp"
#include "platform/linux/x11/x11_session.hpp"
#include "platform/linux/x11/x11_workspace_watch.hpp"
#include "ui/menu_bar/menu_bar_item.hpp"
#include "ui/widgets/color_scheme.hpp"

namespace tarn {
namespace {

constexpr auto patience = std::chrono::milliseconds(50);

bool runsOnX11() {
  return QGuiApplication::platformName() == u"xcb";
}

/// Has `part`, made for the session bus, move to each later one, too.
template <typename Part>
void followSessionBus(Part* part) {
  auto* const bus = new SessionBus(QDBusConnection::sessionBus(), sessionBusAddress(), part);
  QObject::connect(bus, &SessionBus::appeared, part, [part, bus] { part->moveTo(bus->connection()); });
}

/// One Tarn for the session, also on a later bus.
class SessionSingleInstance final : public SingleInstance {
 public:
  SessionSingleInstance() {
    QObject::connect(&bus_, &SessionBus::appeared, &bus_,
                     [this] { instance_.claimAgain(bus_.connection(), platformTerminate); });
  }

  bool claim(std::function<void()> launchedAgain) override {
    return instance_.claim(std::move(launchedAgain));
  }

 private:
  SessionBus bus_{QDBusConnection::sessionBus(), sessionBusAddress()};
  BusSingleInstance instance_{bus_.connection()};
};

}  // namespace

std::unique_ptr<MenuBarItem> platformMenuBarItem() {
  PanelItemDesktop desktop{QDBusConnection::sessionBus(), runningProgramName, {}};
  desktop.releaseMemory = platformReturnMemory;
  if (runsOnX11()) {
    desktop.hasXembedTray = [session = std::make_shared<X11Session>()] {
      return session->hasXembedTray(X11Session::Clock::now() + patience);
    };
  }
  auto item = std::make_unique<PanelItem>(std::move(desktop));
  followSessionBus(item.get());
  return item;
}

std::unique_ptr<SingleInstance> platformSingleInstance() {
  return std::make_unique<SessionSingleInstance>();
}

std::unique_ptr<ColorSchemeWatcher> platformColorScheme() {
  auto scheme = std::make_unique<PortalColorScheme>(QDBusConnection::sessionBus());
  followSessionBus(scheme.get());
  return scheme;
}

PageOpener platformPageOpener() {
  auto portal = std::make_shared<PortalUrlOpener>(
      QDBusConnection::sessionBus(), [](const QString& page) { QDesktopServices::openUrl(QUrl(page)); });
  followSessionBus(portal.get());
  return [portal = std::move(portal)](const QString& page) { portal->open(page); };
}

std::optional<QString> platformShortVersion() {
  return QStringLiteral(TARN_VERSION);
}

void platformSpareMemory() {
  // By default each thread gets a heap of its own, and much is kept for what may come. Few threads here ask
  // for memory, and none of them often.
  constexpr int kept = 64 << 10;
  constexpr int step = 16 << 10;
  mallopt(M_ARENA_MAX, 1);
  mallopt(M_TRIM_THRESHOLD, kept);
  mallopt(M_TOP_PAD, step);
}

void platformReturnMemory() {
  malloc_trim(0);
}

std::unique_ptr<QObject> platformWorkspaceWatch(std::function<void()> switched) {
  // On Wayland the popover has the focus, and loses it.
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  if (x11 == nullptr) return nullptr;
  return std::make_unique<X11WorkspaceWatch>(x11->connection(), std::move(switched));
}

std::unique_ptr<QObject> platformEndOnSignals() {
  return std::make_unique<TerminationSignals>(platformTerminate);
}

void platformTerminate() {
  QCoreApplication::quit();
}

FrontmostApplicationSource platformFrontmostApplication() {
  // Under Wayland an X server may be there too, but it knows only the windows of its own clients.
  if (runsOnX11()) return x11FrontmostApplication(std::make_shared<X11Session>());
  if (const std::string sway = swaySocket(); !sway.empty()) return swayFrontmostApplication(sway);
  if (const std::string hyprland = hyprlandSocket(); !hyprland.empty())
    return hyprlandFrontmostApplication(hyprland);
  return [] { return std::optional<FrontmostApplication>(); };
}

}  // namespace tarn
