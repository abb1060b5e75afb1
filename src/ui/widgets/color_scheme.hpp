// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>
#include <optional>

namespace tarn {

/// Dark text on a light background, or light text on a dark one.
enum class ColorScheme { light, dark };

/// What the user asked the desktop for, where the toolkit's palette does not tell. Main thread.
class ColorSchemeWatcher : public QObject {
  Q_OBJECT

 public:
  using QObject::QObject;

  /// The scheme asked for; nothing when there is no wish, or none is known (yet): then the palette decides.
  virtual std::optional<ColorScheme> preference() const = 0;

 Q_SIGNALS:
  /// preference() is another one now.
  void changed();
};

}  // namespace tarn
