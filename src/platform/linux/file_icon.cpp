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

QIcon iconForPrograms() {
  return QIcon::fromTheme(QStringLiteral("application-x-executable"));
}

/// The icon theme's name for an application is by custom its own, in lower case.
QString themeIconName(const std::string& path) {
  const std::string_view name = deletingPathExtension(lastPathComponent(path));
  return QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())).toLower();
}

/// The theme's icon of a name; null without one, and for what is no name.
QIcon themeIcon(QString name) {
  constexpr qsizetype longest = 255;
  // Some files name the picture's kind, too, which themes do not know.
  for (const QLatin1String ending : {QLatin1String(".png"), QLatin1String(".svg"), QLatin1String(".xpm")}) {
    if (name.endsWith(ending)) name.chop(ending.size());
  }
  if (name.isEmpty() || name.size() > longest || name.contains(u'/')) return {};
  return QIcon::fromTheme(name);
}

/// The first picture of a bundle that the toolkit can read.
QIcon bundleIcon(const std::string& bundle) {
  for (const std::string& picture : bundlePictures(bundle)) {
    QIcon icon = pictureIcon(QString::fromStdString(picture));
    if (!icon.isNull()) return icon;
  }
  return {};
}

QIcon namedIcon(const QString& name) {
  return name.startsWith(u'/') ? pictureIcon(name) : themeIcon(name);
}

}  // namespace

QIcon pictureIcon(const QString& path) {
  constexpr qint64 largestFile = qint64{8} << 20;
  constexpr int largestSide = 4096;  // pixels
  constexpr QSize enough(128, 128);
  const QFileInfo file(path);
  if (!file.isFile() || file.size() > largestFile) return {};
  QImageReader reader(path);
  const QSize size = reader.size();
  if (size.isEmpty() || size.width() > largestSide || size.height() > largestSide) return {};
  reader.setScaledSize(size.scaled(enough, Qt::KeepAspectRatio).boundedTo(size));
  const QImage image = reader.read();
  return image.isNull() ? QIcon() : QIcon(QPixmap::fromImage(image));
}

QIcon applicationIcon(const std::string& path) {
  QIcon icon;
  if (const auto appearance = readDesktopAppearance(path))
    icon = namedIcon(QString::fromStdString(appearance->icon));
  if (path.ends_with(".app")) icon = bundleIcon(path);
  if (icon.isNull()) icon = themeIcon(themeIconName(path));
  return icon.isNull() ? iconForPrograms() : icon;
}

}  // namespace tarn
