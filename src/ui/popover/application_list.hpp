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

/// The rows of the application list, or "Measuring…" before the first snapshot. Rows are kept by group and
/// moved when the ranking changes, so that hover, focus and open rows stay with their application.
class ApplicationList : public QWidget {
  Q_OBJECT

 public:
  /// How far the highlight of a row reaches beyond its content on both sides, in points.
  static constexpr int highlightReach = 6;
  /// The same above and below. The list has this much margin around its rows.
  static constexpr int highlightRise = 1;

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
  void keepReadingOrder();

  AppIconProvider& icons_;
  QVBoxLayout* layout_;
  TextLabel* placeholder_;
  QWidget* beforeRows_;        ///< never shown; where the rows begin in the tab order
  std::vector<AppRow*> rows_;  ///< as shown; owned by the list
};

/// Shows the list at its full height while there is room, and scrolls it when there is not.
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
