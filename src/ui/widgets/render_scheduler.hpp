// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <functional>
#include <utility>

namespace tarn {

/// Renders once for any number of changes that are announced in one turn of the run loop, after they
/// happened: observers are told before a value changes, so they must not read it right away. Main thread.
class RenderScheduler : public QObject {
 public:
  explicit RenderScheduler(std::function<void()> render) : render_(std::move(render)) {}

  void schedule() {
    if (std::exchange(scheduled_, true)) return;
    QCoreApplication::postEvent(this, new QEvent(QEvent::UpdateRequest));
  }

  void renderNow() {
    scheduled_ = false;
    render_();
  }

  bool event(QEvent* event) override {
    if (event->type() != QEvent::UpdateRequest) return QObject::event(event);
    // Somebody may have rendered meanwhile.
    if (scheduled_) renderNow();
    return true;
  }

 private:
  std::function<void()> render_;
  bool scheduled_ = false;
};

}  // namespace tarn
