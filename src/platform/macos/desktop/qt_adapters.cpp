// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/macos/desktop/qt_adapters.hpp"

#include <QImage>
#include <QPixmap>
#include <QStringList>
#include <cmath>

namespace tarn::macos {

namespace {

StatusColor colorOf(Tint tint) {
  switch (tint) {
    case Tint::red:
      return StatusColor::red;
    case Tint::orange:
      return StatusColor::orange;
    case Tint::green:
    case Tint::secondary:
      break;
  }
  return StatusColor::green;
}

QString textOf(const ToolTip& toolTip) {
  QStringList lines{toolTip.status};
  if (!toolTip.detail.isEmpty()) lines += toolTip.detail;
  return lines.join(QLatin1Char('\n'));
}

}  // namespace

StatusItemContent statusItemContent(const MenuBarLabel& label) {
  StatusItemContent content{.symbolName = label.symbolName.toStdString(),
                            .color = colorOf(label.tint),
                            .accessibilityLabel = label.accessibilityText.toStdString(),
                            .toolTip = textOf(label.toolTip).toStdString()};
  if (label.text) content.title = label.text->toStdString();
  return content;
}

MenuBarStatusItem::MenuBarStatusItem(const Factory& makeItem)
    : item_(makeItem([this](ScreenPoint point) {
        Q_EMIT activated(
            QPoint(static_cast<int>(std::lround(point.x)), static_cast<int>(std::lround(point.y))));
      })) {
  // Queued: the caller of show() may still be connecting to the signals.
  connect(this, &MenuBarStatusItem::firstShown, this, &MenuBarItem::hostAppeared, Qt::QueuedConnection);
}

void MenuBarStatusItem::show(const MenuBarLabel& label) {
  if (label == shown_) return;
  if (!shown_) Q_EMIT firstShown(QPrivateSignal());
  shown_ = label;
  item_->show(statusItemContent(label));
}

QIcon makeIcon(const std::vector<Pixels>& imagesByScale) {
  QIcon icon;
  double scale = 0;
  for (const Pixels& pixels : imagesByScale) {
    ++scale;
    const qsizetype bytesPerRow = qsizetype{4} * pixels.width;
    const qsizetype bytes = bytesPerRow * pixels.height;
    if (bytes <= 0 || pixels.rgba.size() < static_cast<std::size_t>(bytes)) continue;
    const QImage image(pixels.rgba.data(), pixels.width, pixels.height, bytesPerRow,
                       QImage::Format_RGBA8888_Premultiplied);
    QPixmap pixmap = QPixmap::fromImage(image.copy());
    pixmap.setDevicePixelRatio(scale);
    icon.addPixmap(pixmap);
  }
  return icon;
}

}  // namespace tarn::macos
