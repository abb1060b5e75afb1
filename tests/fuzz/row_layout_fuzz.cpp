// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <QApplication>
#include <QImage>
#include <QWidget>

#include "fuzz/fuzz_target.hpp"
#include "ui/widgets/display_text.hpp"
#include "ui/popover/row_text.hpp"
#include "ui/widgets/text_label.hpp"

namespace {

/// A row's name and second line, in the room that a row gives them.
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

// A name, as a process or a desktop file might bear it.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static int argumentCount = 1;
  static char program[] = "row_layout_fuzz";
  static char* arguments[] = {program, nullptr};
  qputenv("QT_QPA_PLATFORM", "offscreen");
  // Never destroyed: it would outlive the fonts that it holds.
  static const auto* const application = new QApplication(argumentCount, arguments);
  tarn::require(application != nullptr);
  static const int usualHeight = Row(QStringLiteral("Editor")).sizeHint().height();
  const QString text = tarn::displayText(tarn::textOf(data, size));
  for (const QChar character : text) {
    tarn::require(!character.isSurrogate() || text.isValidUtf16());
    tarn::require(character.category() != QChar::Other_Control);
  }
  Row row(text);
  if (!text.isEmpty()) tarn::require(row.sizeHint().height() == usualHeight);
  tarn::require(row.minimumSizeHint().width() <= 100);
  paint(row);
  return 0;
}
