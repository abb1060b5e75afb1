// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <QRect>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

namespace tarn::test {

/// A client with one window. It also acts as window manager, tray and compositor.
class X11TestClient {
 public:
  explicit X11TestClient(const std::string& display) : connection_(xcb_connect(display.c_str(), nullptr)) {
    EXPECT_EQ(xcb_connection_has_error(connection_), 0);
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    window_ = xcb_generate_id(connection_);
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window_, root_, 0, 0, 10, 10, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    sync();
  }
  ~X11TestClient() { xcb_disconnect(connection_); }
  X11TestClient(const X11TestClient&) = delete;
  X11TestClient& operator=(const X11TestClient&) = delete;

  xcb_window_t window() const { return window_; }
  xcb_window_t root() const { return root_; }

  xcb_atom_t atom(std::string_view name) const {
    const auto cookie = xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
        xcb_intern_atom_reply(connection_, cookie, nullptr), &std::free);
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
  }

  void setNumber(xcb_window_t window, std::string_view name, xcb_atom_t type, std::uint32_t value) {
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, atom(name), type, 32, 1, &value);
    sync();
  }

  void setText(xcb_window_t window, std::string_view name, std::string_view value) {
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, atom(name), XCB_ATOM_STRING, 8,
                        static_cast<std::uint32_t>(value.size()), value.data());
    sync();
  }

  void activate(xcb_window_t window) { setNumber(root_, "_NET_ACTIVE_WINDOW", XCB_ATOM_WINDOW, window); }

  void declareProcess(std::uint32_t pid) { setNumber(window_, "_NET_WM_PID", XCB_ATOM_CARDINAL, pid); }

  void setSelectionOwned(std::string_view selection, bool isOwned) {
    const xcb_window_t owner = isOwned ? window_ : xcb_window_t{XCB_WINDOW_NONE};
    xcb_set_selection_owner(connection_, owner, atom(selection), XCB_CURRENT_TIME);
    sync();
  }

  void mapAt(const QRect& rect) {
    const std::array<std::uint32_t, 4> values{
        static_cast<std::uint32_t>(rect.x()), static_cast<std::uint32_t>(rect.y()),
        static_cast<std::uint32_t>(rect.width()), static_cast<std::uint32_t>(rect.height())};
    xcb_configure_window(
        connection_, window_,
        XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
        values.data());
    xcb_map_window(connection_, window_);
    sync();
  }

  void warpPointer(std::int16_t x, std::int16_t y) {
    xcb_warp_pointer(connection_, XCB_WINDOW_NONE, root_, 0, 0, 0, 0, x, y);
    sync();
  }

  void destroyWindow() {
    xcb_destroy_window(connection_, window_);
    sync();
  }

 private:
  /// Waits until the server has executed all requests.
  void sync() const {
    std::free(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
  }

  xcb_connection_t* connection_;
  xcb_window_t root_ = 0;
  xcb_window_t window_ = 0;
};

}  // namespace tarn::test
