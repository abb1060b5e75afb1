// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <functional>
#include <utility>

namespace tarn {

/// Renders once per turn of the event loop, however many changes were announced. The signals that announce a
/// change are emitted before the value changes, so rendering has to wait. Main thread.
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
    // renderNow() may have been called since.
    if (scheduled_) renderNow();
    return true;
  }

 private:
  std::function<void()> render_;
  bool scheduled_ = false;
};

}  // namespace tarn
