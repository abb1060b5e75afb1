// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Small widgets in the theme's colours.

#pragma once

#include <QCheckBox>
#include <QPushButton>
#include <QString>
#include <QWidget>
#include <variant>

#include "ui/symbols/symbols.hpp"
#include "ui/widgets/theme.hpp"

namespace tarn {

/// A symbol in a colour of the theme, centred in the view's frame. It is decorative: the text beside it has
/// the same meaning.
class GlyphView : public QWidget {
  Q_OBJECT

 public:
  using Color = std::variant<TextStyle, Tint>;

  /// `size` is the size of the symbol in points. The caller sets the size of the view.
  GlyphView(double size, SymbolWeight weight, QWidget* parent = nullptr);

  void setSymbol(const QString& name, Color color);

  const QString& symbolName() const { return name_; }
  Color color() const { return color_; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  double size_;
  SymbolWeight weight_;
  QString name_;
  Color color_ = TextStyle::secondary;
};

/// A horizontal line, one point high.
class Divider : public QWidget {
  Q_OBJECT

 public:
  explicit Divider(QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;
};

/// A checkbox with its label.
class CheckBox : public QCheckBox {
  Q_OBJECT

 public:
  explicit CheckBox(const QString& label, QWidget* parent = nullptr);
  QSize sizeHint() const override;

 protected:
  bool hitButton(const QPoint& position) const override;
  void paintEvent(QPaintEvent* event) override;
};

/// A push button with rounded corners.
class PillButton : public QPushButton {
  Q_OBJECT

 public:
  explicit PillButton(const QString& label, QWidget* parent = nullptr);
  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
};

/// A button that looks like a link.
class LinkButton : public QPushButton {
  Q_OBJECT

 public:
  explicit LinkButton(const QString& label, QWidget* parent = nullptr);
  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace tarn
