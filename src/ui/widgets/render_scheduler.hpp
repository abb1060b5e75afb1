// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <functional>
#include <utility>

namespace tarn {

/// Calls `render` once for all `schedule` calls of one event-loop iteration. `render` runs in the next
/// iteration, because the signals that call `schedule` are emitted before the value changes. Main thread.
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
    // renderNow() may have been called after the event was posted.
    if (scheduled_) renderNow();
    return true;
  }

 private:
  std::function<void()> render_;
  bool scheduled_ = false;
};

}  // namespace tarn
