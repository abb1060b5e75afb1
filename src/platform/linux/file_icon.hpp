// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QIcon>
#include <string>

namespace tarn {

/// The picture in a file, scaled down to what icons need; null for what is no regular file, is larger than
/// any icon, or is no picture that the toolkit can read. Never waits.
QIcon pictureIcon(const QString& path);

/// The icon of an application by its path: the one that its desktop file names, in the icon theme or as a
/// file; the picture of a ".app" directory; for want of these the theme's icon of the application's own name.
/// Where there is none, the theme's icon for programs.
QIcon applicationIcon(const std::string& path);

}  // namespace tarn
