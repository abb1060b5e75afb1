// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>
#include <QSettings>
#include <QString>

namespace tarn {

/// The user's one setting, kept in the user's own store. Main thread.
class Preferences final : public QObject {
  Q_OBJECT

 public:
  /// Over the user's standard store for this application, by the names that the application object has.
  Preferences() = default;

  /// Over a store in the given file.
  explicit Preferences(const QString& storePath);

  /// Whether the menu bar shows the frontmost application's footprint; false until the user asked for it.
  /// Read from the store every time, so that a change by another process is seen.
  bool showFrontmostFootprint();

  /// Writes through to the store at once.
  void setShowFrontmostFootprint(bool show);

 Q_SIGNALS:
  /// The setting is about to change; observers read it on their next turn.
  void willChange();

 private:
  QSettings store_;
};

}  // namespace tarn
