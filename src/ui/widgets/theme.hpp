// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>

#include "monitor/presentation.hpp"

class QWidget;

namespace tarn {

/// Three steps of contrast for text and glyphs.
enum class TextStyle { primary, secondary, tertiary };

/// The colours of one appearance, light or dark.
struct Theme {
  QColor background;
  QColor border;  ///< hairline around the popover
  QColor primary;
  QColor secondary;
  QColor tertiary;
  QColor divider;
  QColor highlight;        ///< behind a row under the pointer or with the focus
  QColor control;          ///< behind buttons and the tab picker
  QColor controlHover;     ///< behind a button under the pointer
  QColor controlSelected;  ///< behind the selected tab
  QColor accent;           ///< a ticked box
  QColor focusRing;        ///< stands out on every background and fill above
  QColor green;
  QColor orange;
  QColor red;

  static const Theme& light();
  static const Theme& dark();

  QColor color(TextStyle style) const;
  QColor color(Tint tint) const;

  /// The palette that carries this theme down a tree of widgets.
  QPalette palette() const;
};

/// The theme that a widget is in, by the palette it inherited.
const Theme& themeOf(const QWidget& widget);

/// The palette role through which a text style reaches a label.
QPalette::ColorRole paletteRole(TextStyle style);

/// The desktop's interface font at `size` points, which are logical pixels.
QFont systemFont(int size, QFont::Weight weight = QFont::Normal);

}  // namespace tarn
