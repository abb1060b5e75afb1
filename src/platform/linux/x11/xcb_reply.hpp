// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

namespace tarn {

struct FreeXcbReply {
  void operator()(void* memory) const { std::free(memory); }
};

/// Owns a reply of the X server, which xcb allocates with malloc. Null when the request failed.
template <typename Reply>
using XcbReply = std::unique_ptr<Reply, FreeXcbReply>;

/// Requests the atom of `name`, creating it if necessary. Does not wait.
inline xcb_intern_atom_cookie_t requestAtom(xcb_connection_t* connection, std::string_view name) {
  return xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
}

/// Waits for the reply to requestAtom(), without timeout: for Qt's own connection, on which Qt waits the same
/// way. XCB_ATOM_NONE when the request failed.
inline xcb_atom_t awaitAtom(xcb_connection_t* connection, xcb_intern_atom_cookie_t cookie) {
  const XcbReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookie, nullptr));
  return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

}  // namespace tarn
