// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "app/run_tarn.hpp"

#include <QApplication>
#include <cstdio>

#include "app/tarn_app.hpp"
#include "ui/popover/accessibility.hpp"

namespace tarn {

namespace {

void describeProgram(const Platform& platform) {
  QCoreApplication::setApplicationName(QStringLiteral("tarn"));
  // On macOS QSettings combines the two names into "com.tarn.tarn", the bundle's identifier.
  QCoreApplication::setOrganizationName(QStringLiteral("tarn"));
  QCoreApplication::setApplicationVersion(platform.version().value_or(QString()));
  QGuiApplication::setApplicationDisplayName(QStringLiteral("Tarn"));
  QGuiApplication::setDesktopFileName(QStringLiteral(TARN_APPLICATION_ID));
  QApplication::setQuitOnLastWindowClosed(false);
}

}  // namespace

int runTarn(int argc, char* argv[], Platform& platform) {
  platform.limitAllocatorArenas();
  describeProgram(platform);
  if (const auto problem = platform.displayProblem()) {
    std::fprintf(stderr, "tarn: %s; Tarn needs one to show itself.\n", qPrintable(*problem));
    return 1;
  }
  const QApplication application(argc, argv);
  const auto terminationSignals = platform.watchTerminationSignals();
  installAccessibility();

  TarnApp* running = nullptr;
  const auto instance = platform.makeSingleInstance();
  const auto launchedAgain = [&running] {
    if (running != nullptr) running->openPopover();
  };
  if (!instance->claim(launchedAgain)) return 0;
  TarnApp tarn(platform);
  running = &tarn;
  return QApplication::exec();
}

}  // namespace tarn
