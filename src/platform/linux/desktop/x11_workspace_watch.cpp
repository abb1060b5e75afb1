// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/desktop/x11_workspace_watch.hpp"

#include <QCoreApplication>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>

namespace tarn {

X11WorkspaceWatch::X11WorkspaceWatch(xcb_connection_t* connection, std::function<void()> switched)
    : switched_(std::move(switched)) {
  constexpr std::string_view name = "_NET_CURRENT_DESKTOP";
  const auto question = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
  const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> answer(
      xcb_intern_atom_reply(connection, question, nullptr), &std::free);
  if (answer) currentWorkspace_ = answer->atom;
  QCoreApplication::instance()->installNativeEventFilter(this);
}

bool X11WorkspaceWatch::nativeEventFilter(const QByteArray& eventType, void* message, qintptr* /*result*/) {
  if (eventType != "xcb_generic_event_t") return false;
  constexpr unsigned sentByAClient = 0x80;
  const auto* const event = static_cast<const xcb_generic_event_t*>(message);
  if ((event->response_type & ~sentByAClient) != XCB_PROPERTY_NOTIFY) return false;
  const auto* const change = reinterpret_cast<const xcb_property_notify_event_t*>(event);
  if (currentWorkspace_ != XCB_ATOM_NONE && change->atom == currentWorkspace_) switched_();
  return false;
}

}  // namespace tarn
