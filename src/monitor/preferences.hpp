// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>
#include <QSettings>
#include <QString>

namespace tarn {

/// The user's setting, in a QSettings store. Main thread.
class Preferences final : public QObject {
  Q_OBJECT

 public:
  /// Uses the user's store of this application: QCoreApplication's organization and application name.
  Preferences() = default;

  /// Uses the INI file `storePath`.
  explicit Preferences(const QString& storePath);

  /// Whether the menu bar shows the frontmost application's footprint; false by default. Reads the store at
  /// each call, so changes by other processes take effect.
  bool showFrontmostFootprint();

  /// Writes to the store immediately.
  void setShowFrontmostFootprint(bool show);

 Q_SIGNALS:
  /// The setting is about to change; observers read it in the next event-loop iteration.
  void willChange();

 private:
  QSettings store_;
};

}  // namespace tarn
