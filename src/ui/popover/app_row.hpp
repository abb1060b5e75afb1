// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QIcon>
#include <QPixmap>
#include <QPushButton>
#include <QString>
#include <QVBoxLayout>
#include <QWidget>
#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "ui/popover/popover_content.hpp"
#include "ui/widgets/controls.hpp"
#include "ui/widgets/text_label.hpp"

namespace tarn {

/// Side of the icon at the start of a row, points.
constexpr int rowIconFrame = 18;

/// Space between the icon, the texts and the figure of a row, points.
constexpr int rowSpacing = 8;

/// Height of the second line of a row and of a process line, points.
constexpr int smallLineHeight = 14;

/// The icon of an application, or the name of a symbol to show instead.
struct AppIcon {
  QPixmap image;       ///< null if a symbol is shown
  QString symbolName;  ///< empty if an image is shown
};

/// Returns the icon of a row. An application's icon is loaded when it is first shown, and cached for the
/// lifetime of this object. Main thread.
class AppIconProvider {
 public:
  explicit AppIconProvider(FileIconLoader loadFileIcon);

  /// `scale` is the screen's pixels per point.
  AppIcon icon(const RowContent& row, double scale);

 private:
  FileIconLoader loadFileIcon_;
  std::unordered_map<std::string, QIcon> cache_;  ///< key: bundle path; entries are never removed
};

/// The texts of a row: a name and, optionally, a smaller line below it. Text that does not fit is elided.
class RowText : public QVBoxLayout {
  Q_OBJECT

 public:
  RowText();

  void setTexts(const QString& name, const std::optional<QString>& secondary);

 private:
  TextLabel* name_;
  TextLabel* secondary_;
};

/// Adds or removes widgets at the end of `widgets` until there are `count`. `widgets` are the last items of
/// `layout`. A new widget is shown; `parent` owns it.
template <typename Widget>
void setWidgetCount(std::vector<Widget*>& widgets, std::size_t count, QVBoxLayout& layout, QWidget* parent) {
  while (widgets.size() > count) {
    delete widgets.back();
    widgets.pop_back();
  }
  while (widgets.size() < count) {
    widgets.push_back(new Widget(parent));
    layout.addWidget(widgets.back());
    widgets.back()->show();
  }
}

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

/// The clickable part of a row: icon, name, figure and chevron. The list paints its highlight.
class AppRowButton : public QPushButton {
  Q_OBJECT

 public:
  explicit AppRowButton(QWidget* parent);

  void setContent(const RowContent& content, const AppIcon& icon);
  void setIcon(const AppIcon& icon);

  bool canExpand() const { return canExpand_; }
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
  bool canExpand_ = false;
  bool isExpanded_ = false;
  AppIconView* icon_;
  RowText* texts_;
  FigureLabel* value_;
  GlyphView* chevron_;
};

/// One process of an expanded row.
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

/// A row of the application list: the button and, while it is expanded, its process lines. Updated in place.
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
