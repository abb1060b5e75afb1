// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QIcon>
#include <QPixmap>
#include <QString>
#include <functional>
#include <string>
#include <unordered_map>

#include "ui/popover/popover_content.hpp"

namespace tarn {

/// The icon of an application, or the name of a symbol to show instead.
struct AppIcon {
  QPixmap image;       ///< null if a symbol is shown
  QString symbolName;  ///< empty if an image is shown
};

/// Loads a file's icon from the system. Returns a null icon if there is none. Main thread.
using FileIconLoader = std::function<QIcon(const std::string& path)>;

/// Returns the icon of a row. An application's icon is loaded when it is first shown, and cached for the
/// lifetime of this object. Main thread.
class AppIconProvider {
 public:
  explicit AppIconProvider(FileIconLoader loadFileIcon);

  /// `scale` is the screen's pixels per point.
  AppIcon icon(const RowContent& row, double scale);

 private:
  FileIconLoader loadFileIcon_;
  std::unordered_map<std::string, QIcon> cache_;  ///< by bundle path; never pruned
};

}  // namespace tarn
