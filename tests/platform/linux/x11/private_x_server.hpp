// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QProcess>
#include <QStringList>
#include <string>

namespace tarn::test {

/// An Xvfb for one test, on a free display number.
class PrivateXServer {
 public:
  /// Starts the server with `options`, on `display` (":3") if one is given.
  explicit PrivateXServer(const QStringList& options = {}, const std::string& display = {});
  ~PrivateXServer();
  Q_DISABLE_COPY_MOVE(PrivateXServer)

  /// A value for DISPLAY.
  const std::string& display() const { return display_; }

  /// Suspends and continues the server process (SIGSTOP, SIGCONT).
  void pause() const;
  void resume() const;

  /// Terminates the server and waits for its end.
  void stop();

 private:
  QProcess server_;
  std::string display_;
};

}  // namespace tarn::test
