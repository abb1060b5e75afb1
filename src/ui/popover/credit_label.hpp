// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>
#include <vector>

#include "ui/widgets/text_label.hpp"

namespace tarn {

/// A short line of text whose emoji come in colour where a font has them, also when the text's own font draws
/// them in black.
class CreditLabel : public TextLabel {
  Q_OBJECT

 public:
  CreditLabel(const QFont& font, TextStyle style, QWidget* parent = nullptr);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  struct Run {
    QString text;
    bool isEmoji = false;
  };

  std::vector<Run> runs() const;
  const QFont& fontFor(const Run& run) const { return run.isEmoji ? emojiFont_ : font(); }

  QFont emojiFont_;
};

}  // namespace tarn
