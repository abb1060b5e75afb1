// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QScrollArea>
#include <QVBoxLayout>
#include <QWidget>
#include <string>
#include <vector>

#include "ui/popover/app_row.hpp"

namespace tarn {

/// The rows of the application list, or "Measuring…" before the first snapshot. Each group keeps its row
/// widget when the ranking changes, so hover and focus stay with the application.
class ApplicationList : public QWidget {
  Q_OBJECT

 public:
  /// Distance from a row's content to the left and right edge of its highlight, points.
  static constexpr int highlightHorizontalMargin = 6;
  /// Distance to the upper and lower edge, points. The list has both margins around its rows.
  static constexpr int highlightVerticalMargin = 1;

  explicit ApplicationList(AppIconProvider& icons, QWidget* parent = nullptr);

  void setRows(const std::vector<RowContent>& rows);

 Q_SIGNALS:
  /// A row was clicked.
  void toggled(const std::string& groupID);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  AppRow* takeRow(const std::string& groupID);
  AppRow* spareRow();
  void updateReadingOrder();

  AppIconProvider& icons_;
  QVBoxLayout* layout_;
  TextLabel* placeholder_;
  QWidget* beforeRows_;        ///< never shown; precedes the rows in the tab order
  std::vector<AppRow*> rows_;  ///< in the order shown; owned by the list
};

/// Shows the list at its full height, or scrolls it if the screen is too low.
class ApplicationListScroller : public QScrollArea {
  Q_OBJECT

 public:
  explicit ApplicationListScroller(ApplicationList* list, QWidget* parent = nullptr);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
};

}  // namespace tarn
