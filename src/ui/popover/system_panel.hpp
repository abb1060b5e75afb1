// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QVBoxLayout>
#include <QWidget>
#include <vector>

#include "ui/popover/app_row.hpp"
#include "ui/popover/popover_content.hpp"
#include "ui/widgets/controls.hpp"
#include "ui/widgets/text_label.hpp"

namespace tarn {

/// One row of the System tab: glyph, texts and figure.
class ExtrasRowView : public QWidget {
  Q_OBJECT

 public:
  explicit ExtrasRowView(QWidget* parent);

  void setContent(const ExtrasRow& content);

 private:
  GlyphView* icon_;
  RowText* texts_;
  FigureLabel* value_;
};

/// The rows of the System tab, or "Reading…" until the first figures are known.
class SystemPanel : public QWidget {
  Q_OBJECT

 public:
  explicit SystemPanel(QWidget* parent = nullptr);

  void setRows(const std::vector<ExtrasRow>& rows);

 private:
  QVBoxLayout* layout_;
  TextLabel* placeholder_;
  std::vector<ExtrasRowView*> rows_;
};

}  // namespace tarn
