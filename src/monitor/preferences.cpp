// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "monitor/preferences.hpp"

namespace tarn {

namespace {

constexpr auto showFrontmostFootprintKey = "showFrontmostFootprint";

}  // namespace

Preferences::Preferences(const QString& storePath) : store_(storePath, QSettings::IniFormat) {}

bool Preferences::showFrontmostFootprint() {
  store_.sync();
  // Any other text, written by hand, is false.
  const QString stored = store_.value(showFrontmostFootprintKey).toString();
  return stored == QLatin1String("true") || stored == QLatin1String("1");
}

void Preferences::setShowFrontmostFootprint(bool show) {
  if (show == showFrontmostFootprint()) return;
  Q_EMIT willChange();
  store_.setValue(showFrontmostFootprintKey, show);
  store_.sync();
}

}  // namespace tarn
