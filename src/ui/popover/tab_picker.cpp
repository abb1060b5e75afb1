// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/popover/tab_picker.hpp"

#include <QHBoxLayout>
#include <QPainter>

#include "ui/widgets/painting.hpp"
#include "ui/widgets/theme.hpp"

namespace tarn {

namespace {

constexpr int pickerHeight = 24;
constexpr int inset = 2;  ///< between the picker's edge and the selected segment
constexpr int pickerRadius = 6;
constexpr int segmentRadius = 5;

}  // namespace

TabSegment::TabSegment(const QString& label, QWidget* parent) : QRadioButton(label, parent) {
  setAttribute(Qt::WA_Hover);
  setFocusPolicy(Qt::NoFocus);  // until it is selected
  setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Expanding);
}

QSize TabSegment::sizeHint() const {
  return {0, pickerHeight - 2 * inset};
}

bool TabSegment::hitButton(const QPoint& position) const {
  return rect().contains(position);
}

void TabSegment::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const Theme& theme = themeOf(*this);
  const QRectF frame = rect();
  painter.setPen(Qt::NoPen);
  if (isChecked()) {
    // A shadow below the selected segment.
    painter.setBrush(QColor(0, 0, 0, 36));
    painter.drawRoundedRect(frame.adjusted(0, 1, 0, 0), segmentRadius, segmentRadius);
    painter.setBrush(theme.controlSelected);
    painter.drawRoundedRect(frame.adjusted(0, 0, 0, -1), segmentRadius, segmentRadius);
  } else if (underMouse()) {
    painter.setBrush(theme.control);
    painter.drawRoundedRect(frame, segmentRadius, segmentRadius);
  }
  if (hasFocus()) drawFocusRing(painter, frame, segmentRadius, theme);
  painter.setFont(systemFont(12, isChecked() ? QFont::Medium : QFont::Normal));
  painter.setPen(theme.primary);
  painter.drawText(rect(), Qt::AlignCenter, text());
}

TabPicker::TabPicker(QWidget* parent) : QWidget(parent), segments_(new QButtonGroup(this)) {
  setFixedHeight(pickerHeight);
  setAccessibleName(QStringLiteral("View"));
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(inset, inset, inset, inset);
  row->setSpacing(0);
  const auto add = [&](PopoverTab tab, const QString& label) {
    auto* segment = new TabSegment(label, this);
    row->addWidget(segment, 1);
    segments_->addButton(segment, static_cast<int>(tab));
  };
  add(PopoverTab::memory, QStringLiteral("Memory"));
  add(PopoverTab::cpu, QStringLiteral("CPU"));
  add(PopoverTab::system, QStringLiteral("System"));
  connect(segments_, &QButtonGroup::idToggled, this, [this](int id, bool checked) {
    // Otherwise Tab would focus the last focused segment, also if another segment is selected.
    segments_->button(id)->setFocusPolicy(checked ? Qt::TabFocus : Qt::NoFocus);
    if (checked) Q_EMIT tabSelected(static_cast<PopoverTab>(id));
  });
}

void TabPicker::setTab(PopoverTab tab) {
  segments_->button(static_cast<int>(tab))->setChecked(true);
}

void TabPicker::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(themeOf(*this).control);
  painter.drawRoundedRect(rect(), pickerRadius, pickerRadius);
}

}  // namespace tarn
