// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/widgets/display_text.hpp"

#include <algorithm>

namespace tarn {

namespace {

/// More than any row can show; keeps a hostile name from costing layout time.
constexpr std::size_t longestText = 512;

bool isUnsafe(QChar character) {
  switch (character.category()) {
    case QChar::Other_Control:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
      return true;
    default:
      break;
  }
  const char16_t code = character.unicode();
  const bool isDirectionMark = code == 0x061c || code == 0x200e || code == 0x200f;
  const bool isEmbedding = code >= 0x202a && code <= 0x202e;
  const bool isIsolate = code >= 0x2066 && code <= 0x2069;
  return isDirectionMark || isEmbedding || isIsolate;
}

}  // namespace

QString displayText(std::string_view utf8) {
  const auto length = static_cast<qsizetype>(std::min(utf8.size(), longestText));
  QString text = QString::fromUtf8(utf8.data(), length);
  std::replace_if(text.begin(), text.end(), isUnsafe, QChar(QChar::ReplacementCharacter));
  return text;
}

}  // namespace tarn
