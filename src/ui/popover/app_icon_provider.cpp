// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/popover/app_icon_provider.hpp"

#include <utility>

namespace tarn {

namespace {

constexpr int iconSize = 32;  ///< points

}  // namespace

AppIconProvider::AppIconProvider(FileIconLoader loadFileIcon) : loadFileIcon_(std::move(loadFileIcon)) {}

AppIcon AppIconProvider::icon(const RowContent& row, double scale) {
  if (!row.bundlePath) return {{}, row.symbol};
  auto cached = cache_.find(*row.bundlePath);
  if (cached == cache_.end()) {
    cached = cache_.emplace(*row.bundlePath, loadFileIcon_(*row.bundlePath)).first;
  }
  const QPixmap image = cached->second.pixmap(QSize(iconSize, iconSize), scale);
  // Without any icon theme the image is null.
  return image.isNull() ? AppIcon{{}, row.symbol} : AppIcon{image, {}};
}

}  // namespace tarn
