// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <QIcon>
#include <QString>

#include "sampling/bundle_path.hpp"
#include "ui/app_icon_provider.hpp"

namespace tarn {

namespace {

/// The icon theme's name for an application is by custom its own, in lower case.
QString themeIconName(const std::string& bundlePath) {
  const std::string_view name = deletingPathExtension(lastPathComponent(bundlePath));
  return QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())).toLower();
}

}  // namespace

FileIconLoader platformFileIcon() {
  return [](const std::string& path) {
    return QIcon::fromTheme(themeIconName(path),
                            QIcon::fromTheme(QStringLiteral("application-x-executable")));
  };
}

}  // namespace tarn
