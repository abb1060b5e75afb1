// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <QApplication>
#include <QImage>
#include <QWidget>

#include "fuzz/fuzz_target.hpp"
#include "ui/popover/app_row.hpp"
#include "ui/popover/popover_content.hpp"
#include "ui/widgets/text_label.hpp"

namespace {

/// A row's name and second line, in the width that the popover gives them.
class Row : public QWidget {
 public:
  explicit Row(const QString& text) {
    auto* texts = new tarn::RowText;
    setLayout(texts);
    texts->setTexts(text, text);
    resize(200, sizeHint().height());
  }
};

void paint(Row& row) {
  QImage image(row.size(), QImage::Format_ARGB32_Premultiplied);
  row.render(&image);
}

}  // namespace

// The input is the name of a process or of a desktop file.
FUZZ_TARGET(row_layout, input) {
  static int argumentCount = 1;
  static char program[] = "row_layout";
  static char* arguments[] = {program, nullptr};
  qputenv("QT_QPA_PLATFORM", "offscreen");
  // Never destroyed: Qt's font database is destroyed before static objects of this file.
  static const auto* const application = new QApplication(argumentCount, arguments);
  tarn::require(application != nullptr);
  static const int plainTextHeight = Row(QStringLiteral("Editor")).sizeHint().height();
  const QString text = tarn::displayText(input);
  for (const QChar character : text) {
    tarn::require(!character.isSurrogate() || text.isValidUtf16());
    tarn::require(character.category() != QChar::Other_Control);
  }
  Row row(text);
  if (!text.isEmpty()) tarn::require(row.sizeHint().height() == plainTextHeight);
  tarn::require(row.minimumSizeHint().width() <= 100);
  paint(row);
}
