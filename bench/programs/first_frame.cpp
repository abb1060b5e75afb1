// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// first_frame WIDTH: prints "ready" and waits until a window of at least that width is painted. Prints the
// time (CLOCK_MONOTONIC, seconds), the number of colours in the first frame, and that number 0.3 seconds
// later. A frame without content has two or three colours.

#include <xcb/damage.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <map>
#include <memory>
#include <set>
#include <vector>

namespace {

struct Free {
  void operator()(void* memory) const { std::free(memory); }
};
template <typename Reply>
using Owned = std::unique_ptr<Reply, Free>;

double now() {
  timespec time{};
  clock_gettime(CLOCK_MONOTONIC, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

using Pixels = std::vector<std::uint32_t>;

/// The content of a window; empty if it cannot be read.
Pixels readPixels(xcb_connection_t* connection, xcb_window_t window) {
  const Owned<xcb_get_geometry_reply_t> size(
      xcb_get_geometry_reply(connection, xcb_get_geometry(connection, window), nullptr));
  if (!size) return {};
  const Owned<xcb_get_image_reply_t> image(xcb_get_image_reply(
      connection,
      xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, window, 0, 0, size->width, size->height, ~0U),
      nullptr));
  if (!image) return {};
  Pixels pixels(static_cast<std::size_t>(xcb_get_image_data_length(image.get())) / sizeof(std::uint32_t));
  std::memcpy(pixels.data(), xcb_get_image_data(image.get()), pixels.size() * sizeof(std::uint32_t));
  return pixels;
}

std::size_t colourCount(const Pixels& pixels) {
  return std::set<std::uint32_t>(pixels.begin(), pixels.end()).size();
}

/// Whether a window has painted its background, which has one colour. Before, it shows the root window's
/// gradient.
bool isPainted(const Pixels& pixels) {
  std::map<std::uint32_t, std::size_t> counts;
  std::size_t maximum = 0;
  for (const std::uint32_t pixel : pixels) maximum = std::max(maximum, ++counts[pixel]);
  return maximum > pixels.size() * 2 / 5;
}

}  // namespace

int main(int argumentCount, char** arguments) {
  if (argumentCount != 2) return 2;
  const int width = std::atoi(arguments[1]);
  xcb_connection_t* const connection = xcb_connect(nullptr, nullptr);
  if (xcb_connection_has_error(connection) != 0) return 1;
  const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
  const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
  xcb_change_window_attributes(connection, root, XCB_CW_EVENT_MASK, &events);
  const auto* const extension = xcb_get_extension_data(connection, &xcb_damage_id);
  const Owned<xcb_damage_query_version_reply_t> version(
      xcb_damage_query_version_reply(connection, xcb_damage_query_version(connection, 1, 1), nullptr));
  if (extension == nullptr || !version) return 1;
  std::puts("ready");
  std::fflush(stdout);

  while (const Owned<xcb_generic_event_t> event{xcb_wait_for_event(connection)}) {
    const int type = event->response_type & 0x7f;
    if (type == XCB_CREATE_NOTIFY || type == XCB_MAP_NOTIFY) {
      // Watch new windows, and existing windows that are shown: what they paint next is the first frame.
      const auto window = type == XCB_CREATE_NOTIFY
                              ? reinterpret_cast<const xcb_create_notify_event_t*>(event.get())->window
                              : reinterpret_cast<const xcb_map_notify_event_t*>(event.get())->window;
      xcb_damage_create(connection, xcb_generate_id(connection), window,
                        XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES);
      xcb_flush(connection);
    } else if (type == extension->first_event + XCB_DAMAGE_NOTIFY) {
      const auto* const damage = reinterpret_cast<const xcb_damage_notify_event_t*>(event.get());
      if (damage->geometry.width < width || damage->area.width < width / 2) continue;
      const double painted = now();
      const Pixels first = readPixels(connection, damage->drawable);
      if (!isPainted(first)) continue;
      const timespec delay{.tv_sec = 0, .tv_nsec = 300'000'000};
      nanosleep(&delay, nullptr);
      std::printf("%.6f %zu %zu\n", painted, colourCount(first),
                  colourCount(readPixels(connection, damage->drawable)));
      return 0;
    }
  }
  return 1;
}
