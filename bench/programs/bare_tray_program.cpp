// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// bare_tray_program: a program of the toolkit's that does nothing but show an icon in the panel. Whatever it
// costs, no such program can cost less.

#include <QApplication>
#include <QPainter>
#include <QPixmap>
#include <QSystemTrayIcon>

int main(int argumentCount, char** arguments) {
  const QApplication application(argumentCount, arguments);
  QPixmap circle(22, 22);
  circle.fill(Qt::transparent);
  {
    QPainter painter(&circle);
    painter.setBrush(Qt::darkGreen);
    painter.drawEllipse(3, 3, 16, 16);
  }
  QSystemTrayIcon icon{QIcon(circle)};
  icon.show();
  return QApplication::exec();
}
