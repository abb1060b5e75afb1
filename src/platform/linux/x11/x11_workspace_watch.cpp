// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/x11/x11_workspace_watch.hpp"

#include <QCoreApplication>
#include <utility>

#include "platform/linux/x11/xcb_reply.hpp"

namespace tarn {

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
