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

/// An X server's answer. Null where there was none.
template <typename Reply>
using XcbReply = std::unique_ptr<Reply, FreeXcbReply>;

/// Asks for the atom of a name.
inline xcb_intern_atom_cookie_t askForAtom(xcb_connection_t* connection, std::string_view name) {
  return xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
}

/// The atom of a name, waited for without bound: for the toolkit's own connection, which waits so, too.
inline xcb_atom_t atomOf(xcb_connection_t* connection, std::string_view name) {
  const XcbReply<xcb_intern_atom_reply_t> answer(
      xcb_intern_atom_reply(connection, askForAtom(connection, name), nullptr));
  return answer ? answer->atom : xcb_atom_t{XCB_ATOM_NONE};
}

}  // namespace tarn
