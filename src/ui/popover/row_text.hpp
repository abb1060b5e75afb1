// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>
#include <QVBoxLayout>
#include <optional>

#include "ui/widgets/text_label.hpp"

namespace tarn {

/// Side of the square at the start of a row that holds its icon, points.
constexpr int rowIconFrame = 18;

/// Between the icon, the texts and the figure of a row, points.
constexpr int rowSpacing = 8;

/// Height of a row's second line, and of the smaller lines below it, points.
constexpr int smallLineHeight = 14;

/// The texts of a row: what it is about, and below that, where there is one, a smaller line. Both are cut
/// where they do not fit.
class RowText : public QVBoxLayout {
  Q_OBJECT

 public:
  RowText();

  void setTexts(const QString& name, const std::optional<QString>& secondary);

 private:
  TextLabel* name_;
  TextLabel* secondary_;
};

}  // namespace tarn
