// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// bare_tray_program: a Qt program that only shows an icon in the panel. It is the lower bound for the cost of
// a Qt program with a tray icon.

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
