// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QPushButton>
#include <QVBoxLayout>
#include <QWidget>
#include <string>
#include <vector>

#include "ui/popover/app_icon_provider.hpp"
#include "ui/widgets/glyph_view.hpp"
#include "ui/popover/popover_content.hpp"
#include "ui/popover/row_text.hpp"
#include "ui/widgets/text_label.hpp"

namespace tarn {

/// The icon of a row: the application's image, or a symbol.
class AppIconView : public GlyphView {
  Q_OBJECT

 public:
  explicit AppIconView(QWidget* parent);
  void setIcon(const AppIcon& icon);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QPixmap image_;
};

/// The clickable part of a row: icon, name, figure and chevron. Its parent paints the highlight behind it.
class AppRowButton : public QPushButton {
  Q_OBJECT

 public:
  explicit AppRowButton(QWidget* parent);

  void setContent(const RowContent& content, const AppIcon& icon);
  void setIcon(const AppIcon& icon);

  /// Whether assistive technology is told that it opens, and if so, whether it is open.
  bool canOpen() const { return canOpen_; }
  bool isExpanded() const { return isExpanded_; }

  bool isHighlighted() const;
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return {0, sizeHint().height()}; }

 Q_SIGNALS:
  void highlightChanged();

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  bool canOpen_ = false;
  bool isExpanded_ = false;
  AppIconView* icon_;
  RowText* texts_;
  FigureLabel* value_;
  GlyphView* chevron_;
};

/// One process of an open row.
class ProcessLineView : public QWidget {
  Q_OBJECT

 public:
  explicit ProcessLineView(QWidget* parent);
  void setContent(const ProcessLine& content);

 private:
  TextLabel* name_;
  TextLabel* pid_;
  FigureLabel* value_;
};

/// A row of the application list: the button and, while it is open, its process lines. Updated in place.
class AppRow : public QWidget {
  Q_OBJECT

 public:
  explicit AppRow(QWidget* parent);

  void setContent(const RowContent& content, const AppIcon& icon);

  const std::string& groupID() const { return content_.id; }
  AppRowButton* button() const { return button_; }

 Q_SIGNALS:
  void toggled(const std::string& groupID);

 private:
  void showProcesses(const std::vector<ProcessLine>& processes);

  RowContent content_;
  QVBoxLayout* layout_;
  AppRowButton* button_;
  std::vector<ProcessLineView*> lines_;  ///< owned by the row
};

}  // namespace tarn
