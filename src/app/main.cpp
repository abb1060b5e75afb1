// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <QApplication>
#include <cstdio>

#include "app/display_check.hpp"
#include "app/program.hpp"
#include "app/single_instance.hpp"
#include "app/tarn_app.hpp"
#include "ui/widgets/accessibility.hpp"

int main(int argc, char* argv[]) {
  tarn::platformSpareMemory();
  QCoreApplication::setApplicationName(QStringLiteral("tarn"));
  // On a Mac the toolkit makes the store's name of the two, "com.tarn.tarn", which is the bundle's.
  QCoreApplication::setOrganizationName(QStringLiteral("tarn"));
  QCoreApplication::setApplicationVersion(tarn::platformShortVersion().value_or(QString()));
  QGuiApplication::setApplicationDisplayName(QStringLiteral("Tarn"));
  QGuiApplication::setDesktopFileName(QStringLiteral(TARN_APPLICATION_ID));
  QApplication::setQuitOnLastWindowClosed(false);

  if (const auto problem = tarn::platformDisplayProblem()) {
    std::fprintf(stderr, "tarn: %s; Tarn needs one to show itself.\n", qPrintable(*problem));
    return 1;
  }
  const QApplication application(argc, argv);
  const auto endings = tarn::platformEndOnSignals();
  tarn::installAccessibility();

  tarn::TarnApp* running = nullptr;
  const auto instance = tarn::platformSingleInstance();
  const auto launchedAgain = [&running] {
    if (running != nullptr) running->openPopover();
  };
  if (!instance->claim(launchedAgain)) return 0;
  tarn::TarnApp tarn;
  running = &tarn;
  return QApplication::exec();
}
