// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QIcon>
#include <string>

namespace tarn {

/// The image in a file, scaled down to icon size. Null when it is not a regular file, is too large, or has no
/// format that Qt reads. Does not block on pipes and devices. Main thread.
QIcon imageIcon(const QString& path);

/// The icon of an application: `path` is its desktop file or its ".app" directory. The first of: the desktop
/// file's Icon key (a theme icon's name or a file, Icon Theme Specification), the image in the ".app"
/// directory, the theme's icon of the application's name, the theme's icon for executables. Main thread.
QIcon applicationIcon(const std::string& path);

}  // namespace tarn
