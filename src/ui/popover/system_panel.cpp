// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/popover/system_panel.hpp"

#include <QHBoxLayout>

namespace tarn {

namespace {

constexpr int rowPadding = 1;  ///< above and below each row
constexpr int glyphSize = 16;  ///< the symbol without its margin is as high as the text
constexpr int spacingOfRows = 8;

}  // namespace

ExtrasRowView::ExtrasRowView(QWidget* parent)
    : QWidget(parent),
      icon_(new GlyphView(glyphSize, SymbolWeight::regular)),
      texts_(new RowText),
      value_(new FigureLabel(systemFont(12), TextStyle::secondary)) {
  icon_->setFixedSize(rowIconFrame, rowIconFrame);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, rowPadding, 0, rowPadding);
  row->setSpacing(rowSpacing);
  row->addWidget(icon_, 0, Qt::AlignVCenter);
  row->addLayout(texts_, 1);
  row->addWidget(value_, 0, Qt::AlignVCenter);
}

void ExtrasRowView::setContent(const ExtrasRow& content) {
  icon_->setSymbol(content.symbol, TextStyle::secondary);
  texts_->setTexts(content.label, content.secondary);
  value_->setText(content.value);
  value_->updateGeometry();
}

SystemPanel::SystemPanel(QWidget* parent)
    : QWidget(parent),
      layout_(new QVBoxLayout(this)),
      placeholder_(makePlaceholder(QStringLiteral("Reading…"))) {
  layout_->setContentsMargins(0, 0, 0, 0);
  layout_->setSpacing(spacingOfRows);
  layout_->addWidget(placeholder_);
}

void SystemPanel::setRows(const std::vector<ExtrasRow>& rows) {
  placeholder_->hide();
  setWidgetCount(rows_, rows.size(), *layout_, this);
  for (std::size_t i = 0; i < rows.size(); ++i) rows_[i]->setContent(rows[i]);
}

}  // namespace tarn
