// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/status_notifier/host_kind.hpp"

#include <QFile>
#include <QFileInfo>

namespace tarn {

HostKind hostKind(const QString& processName) {
  if (processName == u"gnome-shell") return HostKind::ayatanaLabel;
  const bool keepsProportions =
      processName == u"waybar" || processName == u"mate-panel" || processName == u"notification-area-applet";
  return keepsProportions ? HostKind::widePictures : HostKind::plain;
}

QString runningProgramName(unsigned pid) {
  const QString process = QStringLiteral("/proc/%1/").arg(pid);
  QString executable = QFile::symLinkTarget(process + QStringLiteral("exe"));
  if (!executable.isEmpty()) {
    // A panel that was upgraded while it runs keeps its old, deleted file.
    const QString deleted = QStringLiteral(" (deleted)");
    if (executable.endsWith(deleted)) executable.chop(deleted.size());
    return QFileInfo(executable).fileName();
  }
  QFile name(process + QStringLiteral("comm"));
  if (!name.open(QIODevice::ReadOnly)) return {};
  return QString::fromUtf8(name.readAll()).trimmed();
}

}  // namespace tarn
