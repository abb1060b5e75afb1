// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/macos/desktop/menu_bar_status_item.hpp"

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

QString toolTip(const MenuBarHover& hover) {
  QStringList lines{hover.verdict};
  if (!hover.detail.isEmpty()) lines += hover.detail;
  return lines.join(QLatin1Char('\n'));
}

}  // namespace

StatusItemContent statusItemContent(const MenuBarLabel& label) {
  StatusItemContent content{.symbolName = label.symbolName.toStdString(),
                            .color = colorOf(label.tint),
                            .accessibilityLabel = label.accessibilityText.toStdString(),
                            .toolTip = toolTip(label.hover).toStdString()};
  if (label.text) content.title = label.text->toStdString();
  return content;
}

MenuBarStatusItem::MenuBarStatusItem(const Factory& makeItem)
    : item_(makeItem([this](ScreenPoint point) {
        Q_EMIT activated(
            QPoint(static_cast<int>(std::lround(point.x)), static_cast<int>(std::lround(point.y))));
      })) {}

void MenuBarStatusItem::show(const MenuBarLabel& label) {
  if (label == shown_) return;
  // The menu bar is always there. Who made the item is told once he can be.
  if (!shown_) QMetaObject::invokeMethod(this, "hostAppeared", Qt::QueuedConnection);
  shown_ = label;
  item_->show(statusItemContent(label));
}

}  // namespace tarn::macos
