// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QProcess>
#include <QStringList>
#include <string>

namespace tarn::test {

/// An X server for one test, on a display number that was free.
class PrivateXServer {
 public:
  /// `options` go to the server; with a `display` it is that one.
  explicit PrivateXServer(const QStringList& options = {}, const std::string& display = {});
  ~PrivateXServer();
  Q_DISABLE_COPY_MOVE(PrivateXServer)

  /// As in the environment.
  const std::string& display() const { return display_; }

  /// Stops the server from running, and lets it go on.
  void pause() const;
  void resume() const;

  /// Ends it.
  void stop();

 private:
  QProcess server_;
  std::string display_;
};

}  // namespace tarn::test
