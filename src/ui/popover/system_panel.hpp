// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QVBoxLayout>
#include <QWidget>
#include <vector>

#include "ui/widgets/glyph_view.hpp"
#include "ui/popover/row_text.hpp"
#include "ui/popover/system_content.hpp"
#include "ui/widgets/text_label.hpp"

namespace tarn {

/// One fact: glyph, texts and figure.
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

/// The facts of the System tab, one below the other; a placeholder until the first of them are known.
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
