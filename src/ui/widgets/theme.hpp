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

/// The colour scheme that the user chose in the desktop's settings, where Qt's palette does not follow them.
/// Main thread.
class ColorSchemeWatcher : public QObject {
  Q_OBJECT

 public:
  using QObject::QObject;

  /// Nothing when the user has no preference, or none is known (yet): the palette decides then.
  virtual std::optional<ColorScheme> preference() const = 0;

 Q_SIGNALS:
  /// preference() has changed.
  void changed();
};

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
  QColor accent;           ///< a checked box
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

/// The theme of a widget: light or dark by the palette that it inherited.
const Theme& themeOf(const QWidget& widget);

/// The palette role that holds the colour of a text style.
QPalette::ColorRole paletteRole(TextStyle style);

/// The desktop's interface font. `size` is in points, that is in device-independent pixels.
QFont systemFont(int size, QFont::Weight weight = QFont::Normal);

}  // namespace tarn
