// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/macos/desktop/file_icon.hpp"

#include <QImage>
#include <QPixmap>

namespace tarn::macos {

QIcon iconOf(const std::vector<Pixels>& picturesByScale) {
  QIcon icon;
  double scale = 0;
  for (const Pixels& picture : picturesByScale) {
    ++scale;
    const qsizetype bytesPerRow = qsizetype{4} * picture.width;
    const qsizetype bytes = bytesPerRow * picture.height;
    if (bytes <= 0 || picture.rgba.size() < static_cast<std::size_t>(bytes)) continue;
    const QImage view(picture.rgba.data(), picture.width, picture.height, bytesPerRow,
                      QImage::Format_RGBA8888_Premultiplied);
    QPixmap pixmap = QPixmap::fromImage(view.copy());
    pixmap.setDevicePixelRatio(scale);
    icon.addPixmap(pixmap);
  }
  return icon;
}

}  // namespace tarn::macos
