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

/// The icon of an application, or the name of the symbol that stands in for one.
struct AppIcon {
  QPixmap image;       ///< null where a symbol is shown
  QString symbolName;  ///< empty where an image is shown
};

/// Asks the system for a file's icon. Main thread; null when the system has none at all.
using FileIconLoader = std::function<QIcon(const std::string& path)>;

/// Gives every row its icon. An application's is loaded once, the first time it is shown, and kept for good.
/// Main thread.
class AppIconProvider {
 public:
  explicit AppIconProvider(FileIconLoader loadFileIcon);

  /// The icon for a row, for a screen of `scale` pixels per point.
  AppIcon icon(const RowContent& forRow, double scale);

 private:
  FileIconLoader loadFileIcon_;
  std::unordered_map<std::string, QIcon> cache_;  ///< by bundle path; never pruned
};

}  // namespace tarn
