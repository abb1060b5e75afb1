// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QLabel>
#include <QString>
#include <vector>

#include "ui/widgets/theme.hpp"

namespace tarn {

/// What a label does with text that is wider than the label.
enum class Overflow {
  wrap,   ///< break it into lines
  elide,  ///< show one line that ends in an ellipsis
};

/// Plain text in one of the text styles, aligned to the leading edge. The text, not the desktop, decides the
/// writing direction.
class TextLabel : public QLabel {
  Q_OBJECT

 public:
  TextLabel(const QFont& font, TextStyle style, Overflow overflow, QWidget* parent = nullptr);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  Qt::LayoutDirection textDirection() const;

  Overflow overflow_;
};

/// A label that is shown until figures are known: centred, with 8 points above and below. The caller owns it
/// until it has a parent.
TextLabel* makePlaceholder(const QString& text);

/// A figure whose digits all have the same width, so that its characters keep their positions when a digit
/// changes. Always written from left to right.
class FigureLabel : public TextLabel {
  Q_OBJECT

 public:
  FigureLabel(const QFont& font, TextStyle style, QWidget* parent = nullptr);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  /// A character, centred in a cell.
  struct Cell {
    QString character;
    int advance = 0;  ///< of the character
    int width = 0;    ///< of the cell
  };

  std::vector<Cell> cells() const;
};

}  // namespace tarn
