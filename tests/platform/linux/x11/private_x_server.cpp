// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/x11/private_x_server.hpp"

#include <sys/prctl.h>

#include <csignal>
#include <stdexcept>

namespace tarn::test {

PrivateXServer::PrivateXServer(const QStringList& options, const std::string& display) {
  QStringList arguments{QStringLiteral("-displayfd"), QStringLiteral("1"),
                        QStringLiteral("-screen"),    QStringLiteral("0"),
                        QStringLiteral("200x200x24"), QStringLiteral("-nolisten"),
                        QStringLiteral("tcp"),        QStringLiteral("-noreset")};
  if (!display.empty()) arguments.prepend(QString::fromStdString(display));
  server_.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
  server_.start(QStringLiteral("Xvfb"), arguments + options);
  while (!server_.canReadLine()) {
    if (!server_.waitForReadyRead(20000)) throw std::runtime_error("Xvfb does not start");
  }
  display_ = ":" + server_.readLine().trimmed().toStdString();
}

PrivateXServer::~PrivateXServer() {
  stop();
}

void PrivateXServer::pause() const {
  ::kill(static_cast<pid_t>(server_.processId()), SIGSTOP);
}

void PrivateXServer::resume() const {
  ::kill(static_cast<pid_t>(server_.processId()), SIGCONT);
}

void PrivateXServer::stop() {
  if (server_.state() == QProcess::NotRunning) return;
  resume();
  server_.terminate();
  if (!server_.waitForFinished(10000)) server_.kill();
  server_.waitForFinished();
}

}  // namespace tarn::test
