// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "fuzz/fuzz_input.hpp"
#include "platform/linux/applications/application_index.hpp"
#include "platform/linux/applications/desktop_entry.hpp"
#include "platform/linux/system/temporary_tree.hpp"

// An application's desktop file and, after a line "%%", its bus service's.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const tarn::TemporaryTree tree;
  const std::string_view text = tarn::textOf(data, size);
  const std::size_t end = text.find("\n%%\n");
  const std::string desktop = tree.at("share/applications/org.example.Paint.desktop").string();
  tree.write("share/applications/org.example.Paint.desktop", text.substr(0, end));
  tree.write("share/dbus-1/services/org.example.Paint.service",
             end == std::string_view::npos ? std::string_view() : text.substr(end + 4));
  tarn::readDesktopEntry(desktop);
  tarn::readDesktopAppearance(desktop);
  tarn::ApplicationIndex index(tree.roots(), {tree.at("share").string()}, {"/usr/bin"});
  index.refresh();
  tarn::require(index.size() <= 1);
  for (const auto* file :
       {index.byId("org.example.Paint"), index.byExecutable("/usr/bin/env"),
        index.byServiceExecutable("/usr/bin/env"), index.byPrivateDirectory("/opt/paint/bin/x")}) {
    tarn::require(file == nullptr || *file == desktop);
  }
  return 0;
}
