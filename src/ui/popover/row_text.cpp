// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/popover/row_text.hpp"

namespace tarn {

RowText::RowText()
    : name_(new TextLabel(systemFont(12, QFont::Medium), TextStyle::primary, Overflow::cuts)),
      secondary_(new TextLabel(systemFont(10), TextStyle::secondary, Overflow::cuts)) {
  constexpr int nameHeight = 18;
  name_->setFixedHeight(nameHeight);
  secondary_->setFixedHeight(smallLineHeight);
  setSpacing(1);
  addWidget(name_);
  addWidget(secondary_);
}

void RowText::setTexts(const QString& name, const std::optional<QString>& secondary) {
  name_->setText(name);
  secondary_->setText(secondary.value_or(QString()));
  secondary_->setVisible(secondary.has_value());
}

}  // namespace tarn
