// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/dbus/private_bus.hpp"

#include <sys/prctl.h>

#include <QFile>
#include <atomic>
#include <csignal>
#include <stdexcept>

namespace tarn::test {
namespace {

std::atomic<int> connectionCount = 0;

void sendSignalTo(const QProcess& process, int signalNumber) {
  ::kill(static_cast<pid_t>(process.processId()), signalNumber);
}

}  // namespace

PrivateBus::PrivateBus()
    : address_(QStringLiteral("unix:path=") + directory_.filePath(QStringLiteral("bus"))),
      configuration_(directory_.filePath(QStringLiteral("bus.conf"))) {
  QFile file(configuration_);
  if (!file.open(QIODevice::WriteOnly)) throw std::runtime_error("cannot write the bus configuration");
  file.write(
      "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\" "
      "\"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n"
      "<busconfig><type>session</type><keep_umask/><listen>" +
      address_.toUtf8() +
      "</listen><policy context=\"default\"><allow send_destination=\"*\" eavesdrop=\"true\"/>"
      "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>\n");
  file.close();
  daemon_.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
  start();
}

void PrivateBus::start() {
  daemon_.start(QStringLiteral("dbus-daemon"),
                {QStringLiteral("--config-file=") + configuration_, QStringLiteral("--nofork"),
                 QStringLiteral("--nopidfile"), QStringLiteral("--print-address=1")});
  while (!daemon_.canReadLine()) {
    if (!daemon_.waitForReadyRead(10000)) {
      throw std::runtime_error("dbus-daemon does not start: " + daemon_.readAllStandardError().toStdString());
    }
  }
  daemon_.readLine();
}

PrivateBus::~PrivateBus() {
  for (const QString& name : names_) QDBusConnection::disconnectFromBus(name);
  kill();
}

QDBusConnection PrivateBus::connection() {
  names_ << QStringLiteral("test-%1").arg(++connectionCount);
  return QDBusConnection::connectToBus(address_, names_.last());
}

void PrivateBus::pause() const {
  sendSignalTo(daemon_, SIGSTOP);
}

void PrivateBus::resume() const {
  sendSignalTo(daemon_, SIGCONT);
}

void PrivateBus::kill() {
  daemon_.kill();
  daemon_.waitForFinished();
}

}  // namespace tarn::test
