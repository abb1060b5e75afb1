// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/x11/x11_qt_connection.hpp"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QRectF>
#include <QScreen>
#include <utility>

#include "platform/linux/x11/xcb_reply.hpp"

namespace tarn {
namespace {

/// `native` in Qt's coordinates, if it is on `screen`.
std::optional<QPoint> pointOnScreen(const QPoint& native, const ScreenScale& screen) {
  const QPoint corner = screen.geometry.topLeft();
  const QPoint point = corner + (native - corner) / screen.scale;
  if (!screen.geometry.contains(point)) return std::nullopt;
  return point;
}

}  // namespace

std::vector<ScreenScale> screenScales() {
  std::vector<ScreenScale> scales;
  for (const QScreen* screen : QGuiApplication::screens()) {
    scales.push_back({screen->geometry(), screen->devicePixelRatio()});
  }
  return scales;
}

X11ClickState queryX11ClickState(xcb_connection_t* connection, const std::vector<ScreenScale>& screens) {
  const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
  // Each compositing manager owns this selection while it runs (Extended Window Manager Hints,
  // _NET_WM_CM_Sn).
  const auto selectionCookie = requestAtom(connection, "_NET_WM_CM_S0");
  const auto pointerCookie = xcb_query_pointer(connection, root);
  const xcb_atom_t selection = awaitAtom(connection, selectionCookie);
  const XcbReply<xcb_query_pointer_reply_t> pointer(
      xcb_query_pointer_reply(connection, pointerCookie, nullptr));

  const bool isOnWindow = pointer && pointer->child != XCB_WINDOW_NONE;
  const auto ownerCookie = xcb_get_selection_owner(connection, selection);
  const auto windowCookie =
      isOnWindow ? xcb_get_geometry(connection, pointer->child) : xcb_get_geometry_cookie_t{};
  const XcbReply<xcb_get_selection_owner_reply_t> owner(
      xcb_get_selection_owner_reply(connection, ownerCookie, nullptr));
  const XcbReply<xcb_get_geometry_reply_t> window(
      isOnWindow ? xcb_get_geometry_reply(connection, windowCookie, nullptr) : nullptr);

  X11ClickState state{.hasCompositor = owner && owner->owner != XCB_WINDOW_NONE};
  if (!pointer || pointer->same_screen == 0) return state;
  for (const ScreenScale& screen : screens) {
    state.pointer = pointOnScreen({pointer->root_x, pointer->root_y}, screen);
    if (!state.pointer) continue;
    if (window) {
      // Relative to the pointer, so that a window that begins on another screen is converted with the scale
      // of the pointer's screen.
      const QPointF corner(window->x - pointer->root_x, window->y - pointer->root_y);
      const QSizeF size(window->width, window->height);
      state.windowUnderPointer = QRectF(*state.pointer + corner / screen.scale, size / screen.scale).toRect();
    }
    break;
  }
  return state;
}

X11WorkspaceWatch::X11WorkspaceWatch(xcb_connection_t* connection, std::function<void()> switched)
    : switched_(std::move(switched)),
      currentDesktop_(awaitAtom(connection, requestAtom(connection, "_NET_CURRENT_DESKTOP"))) {
  QCoreApplication::instance()->installNativeEventFilter(this);
}

bool X11WorkspaceWatch::nativeEventFilter(const QByteArray& eventType, void* message, qintptr* /*result*/) {
  if (eventType != "xcb_generic_event_t") return false;
  constexpr unsigned sendEventBit = 0x80;  // set when a client sent the event
  const auto* const event = static_cast<const xcb_generic_event_t*>(message);
  if ((event->response_type & ~sendEventBit) != XCB_PROPERTY_NOTIFY) return false;
  const auto* const change = reinterpret_cast<const xcb_property_notify_event_t*>(event);
  if (currentDesktop_ != XCB_ATOM_NONE && change->atom == currentDesktop_) switched_();
  return false;
}

}  // namespace tarn
