// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QButtonGroup>
#include <QRadioButton>
#include <QWidget>

#include "ui/popover/popover_content.hpp"

namespace tarn {

/// One segment of the tab picker.
class TabSegment : public QRadioButton {
  Q_OBJECT

 public:
  TabSegment(const QString& label, QWidget* parent);
  QSize sizeHint() const override;

 protected:
  bool hitButton(const QPoint& position) const override;
  void paintEvent(QPaintEvent* event) override;
};

/// The segmented control that selects the popover's tab. The arrow keys move the selection.
class TabPicker : public QWidget {
  Q_OBJECT

 public:
  explicit TabPicker(QWidget* parent = nullptr);

  void setTab(PopoverTab tab);

 Q_SIGNALS:
  void tabSelected(PopoverTab tab);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QButtonGroup* segments_;
};

}  // namespace tarn
