// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/file_icon.hpp"

#include <QFileInfo>
#include <QImageReader>
#include <QPixmap>
#include <QString>

#include "platform/linux/app_identity/application_information.hpp"
#include "platform/linux/app_identity/desktop_entry.hpp"
#include "sampling/bundle_path.hpp"

namespace tarn {

namespace {

QIcon executableIcon() {
  return QIcon::fromTheme(QStringLiteral("application-x-executable"));
}

/// By convention, the name of an application's theme icon is the application's name in lower case.
QString themeIconName(const std::string& path) {
  const std::string_view name = deletingPathExtension(lastPathComponent(path));
  return QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())).toLower();
}

/// The theme's icon of that name; null when there is none or the name is not valid.
QIcon themeIcon(QString name) {
  constexpr qsizetype longest = 255;
  // Some desktop files append the image format, which theme icon names do not have.
  for (const QLatin1String ending : {QLatin1String(".png"), QLatin1String(".svg"), QLatin1String(".xpm")}) {
    if (name.endsWith(ending)) name.chop(ending.size());
  }
  if (name.isEmpty() || name.size() > longest || name.contains(u'/')) return {};
  return QIcon::fromTheme(name);
}

/// The first image of a bundle that Qt can read.
QIcon bundleIcon(const std::string& bundle) {
  for (const std::string& image : bundleIconFiles(bundle)) {
    QIcon icon = imageIcon(QString::fromStdString(image));
    if (!icon.isNull()) return icon;
  }
  return {};
}

QIcon namedIcon(const QString& name) {
  return name.startsWith(u'/') ? imageIcon(name) : themeIcon(name);
}

}  // namespace

QIcon imageIcon(const QString& path) {
  constexpr qint64 largestFile = qint64{8} << 20;  // bytes
  constexpr int largestSide = 4096;                // pixels
  constexpr QSize iconSize(128, 128);              // pixels
  const QFileInfo file(path);
  if (!file.isFile() || file.size() > largestFile) return {};
  QImageReader reader(path);
  const QSize size = reader.size();
  if (size.isEmpty() || size.width() > largestSide || size.height() > largestSide) return {};
  reader.setScaledSize(size.scaled(iconSize, Qt::KeepAspectRatio).boundedTo(size));
  const QImage image = reader.read();
  return image.isNull() ? QIcon() : QIcon(QPixmap::fromImage(image));
}

QIcon applicationIcon(const std::string& path) {
  QIcon icon;
  if (const auto appearance = readDesktopAppearance(path))
    icon = namedIcon(QString::fromStdString(appearance->icon));
  if (path.ends_with(".app")) icon = bundleIcon(path);
  if (icon.isNull()) icon = themeIcon(themeIconName(path));
  return icon.isNull() ? executableIcon() : icon;
}

}  // namespace tarn
