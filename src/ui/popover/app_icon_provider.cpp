// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/popover/app_icon_provider.hpp"

#include <utility>

namespace tarn {

namespace {

constexpr int iconSize = 32;  ///< points

}  // namespace

AppIconProvider::AppIconProvider(FileIconLoader loadFileIcon) : loadFileIcon_(std::move(loadFileIcon)) {}

AppIcon AppIconProvider::icon(const RowContent& forRow, double scale) {
  if (!forRow.bundlePath) return {{}, forRow.symbol};
  auto cached = cache_.find(*forRow.bundlePath);
  if (cached == cache_.end()) {
    cached = cache_.emplace(*forRow.bundlePath, loadFileIcon_(*forRow.bundlePath)).first;
  }
  const QPixmap image = cached->second.pixmap(QSize(iconSize, iconSize), scale);
  // A desktop without any icon theme still shows that this is a program.
  return image.isNull() ? AppIcon{{}, forRow.symbol} : AppIcon{image, {}};
}

}  // namespace tarn
