// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <array>
#include <string>

#include "fuzz/fuzz_target.hpp"
#include "platform/linux/app_identity/application_index.hpp"
#include "platform/linux/app_identity/desktop_entry.hpp"
#include "support/temporary_tree.hpp"

namespace {

/// Programs that the desktop file can start.
constexpr std::array programs{"/usr/bin/paint", "/usr/bin/env", "/opt/paint/bin/paint",
                              "/opt/paint/paint.py"};

const tarn::TemporaryTree& treeWithPrograms() {
  static const tarn::TemporaryTree tree;
  static const bool isReady = [] {
    for (const std::string program : programs) tree.write(program.substr(1), "");
    return true;
  }();
  tarn::require(isReady);
  return tree;
}

}  // namespace

// The input is a desktop file and, after a line "%%", the D-Bus service file of the same application.
FUZZ_TARGET(desktop_files, text) {
  const tarn::TemporaryTree& tree = treeWithPrograms();
  constexpr std::string_view separator = "\n%%\n";
  const std::size_t end = text.find(separator);
  const std::string file = "/share/applications/org.example.Paint.desktop";
  tree.write(file.substr(1), text.substr(0, end));
  tree.write("share/dbus-1/services/org.example.Paint.service",
             end == std::string_view::npos ? std::string_view() : text.substr(end + separator.size()));
  const bool isApplication = tarn::readDesktopEntry(tree.at(file.substr(1)).string()).has_value();
  tarn::require(tarn::readDesktopAppearance(tree.at(file.substr(1)).string()).has_value() == isApplication);
  tarn::ApplicationIndex index(tree.roots(), {"/share"}, {"/usr/bin"});
  index.refresh();
  tarn::require(index.size() == (isApplication ? 1 : 0));
  tarn::require((index.byId("org.example.Paint") != nullptr) == isApplication);
  for (const std::string program : programs) {
    for (const auto* result :
         {index.byExecutable(program), index.byServiceExecutable(program), index.byPrivateDirectory(program)})
      tarn::require(result == nullptr || *result == file);
  }
}
