// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QPixmap>
#include <QString>
#include <QWidget>
#include <variant>

#include "ui/symbols/symbols.hpp"
#include "ui/widgets/theme.hpp"

namespace tarn {

/// A symbol in a colour of the theme, centred in the view's frame. Decorative: the text beside it says the
/// same.
class GlyphView : public QWidget {
  Q_OBJECT

 public:
  using Color = std::variant<TextStyle, Tint>;

  /// `size` is the symbol's in points; the view's own size is the caller's to fix.
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

}  // namespace tarn
