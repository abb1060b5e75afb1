// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QColor>
#include <QFont>
#include <QObject>
#include <QPalette>
#include <optional>

#include "monitor/presentation.hpp"

class QWidget;

namespace tarn {

/// Dark text on a light background, or light text on a dark one.
enum class ColorScheme { light, dark };

/// The colour scheme in the desktop's settings, for desktops whose settings do not change Qt's palette. Main
/// thread.
class ColorSchemeWatcher : public QObject {
  Q_OBJECT

 public:
  using QObject::QObject;

  /// nullopt when the user has no preference or the preference is unknown. The caller then uses the palette.
  virtual std::optional<ColorScheme> preference() const = 0;

 Q_SIGNALS:
  /// preference() has changed.
  void changed();
};

/// Contrast of text and glyphs with the background, highest first.
enum class TextStyle { primary, secondary, tertiary };

/// The colours of the light or the dark colour scheme.
struct Theme {
  QColor background;
  QColor border;  ///< hairline around the popover
  QColor primary;
  QColor secondary;
  QColor tertiary;
  QColor divider;
  QColor highlight;        ///< background of a row that is hovered or has the focus
  QColor control;          ///< background of buttons and the tab picker
  QColor controlHover;     ///< background of a hovered button
  QColor controlSelected;  ///< background of the selected tab
  QColor accent;           ///< background of a checked box
  QColor focusRing;        ///< has a contrast of 3:1 or more with every background and fill above
  QColor green;
  QColor orange;
  QColor red;

  static const Theme& light();
  static const Theme& dark();

  QColor color(TextStyle style) const;
  QColor color(Tint tint) const;

  /// A palette with these colours. Child widgets inherit it.
  QPalette palette() const;
};

/// The theme of a widget: light or dark, decided by the brightness of the palette that it inherited.
const Theme& themeOf(const QWidget& widget);

/// The palette role that holds the colour of a text style.
QPalette::ColorRole paletteRole(TextStyle style);

/// The desktop's interface font. `size` is in device-independent pixels.
QFont systemFont(int size, QFont::Weight weight = QFont::Normal);

}  // namespace tarn
