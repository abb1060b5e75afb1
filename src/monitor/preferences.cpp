// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "monitor/preferences.hpp"

namespace tarn {

namespace {

constexpr auto showFrontmostFootprintKey = "showFrontmostFootprint";

}  // namespace

Preferences::Preferences()
    : store_(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("tarn"), QStringLiteral("tarn")) {}

Preferences::Preferences(const QString& storePath) : store_(storePath, QSettings::IniFormat) {}

bool Preferences::showFrontmostFootprint() {
  store_.sync();
  return store_.value(showFrontmostFootprintKey, false).toBool();
}

void Preferences::setShowFrontmostFootprint(bool show) {
  if (show == showFrontmostFootprint()) return;
  Q_EMIT willChange();
  store_.setValue(showFrontmostFootprintKey, show);
  store_.sync();
}

}  // namespace tarn
