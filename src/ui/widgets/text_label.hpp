// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QLabel>
#include <QString>
#include <vector>

#include "ui/widgets/theme.hpp"

namespace tarn {

/// How a label treats text that is wider than it.
enum class Overflow {
  wraps,  ///< onto as many lines as it needs
  cuts,   ///< one line, with an ellipsis at its end
};

/// Plain text in one of the text styles. It lies at the leading edge, and runs in the direction of its own
/// language.
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

/// What stands where figures will be once they are known: centred, with 8 points above and below. The caller
/// owns it until it has a parent.
TextLabel* makePlaceholder(const QString& text);

/// A figure whose digits all have the same width, so that it does not jump when it changes; always written
/// from left to right.
class FigureLabel : public TextLabel {
  Q_OBJECT

 public:
  FigureLabel(const QFont& font, TextStyle style, QWidget* parent = nullptr);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  /// A character and the room that it has, in which it is centred.
  struct Cell {
    QString character;
    int advance = 0;
    int width = 0;
  };

  std::vector<Cell> cells() const;
};

}  // namespace tarn
