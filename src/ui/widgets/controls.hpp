// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The popover's small controls, drawn in the theme's colours.

#pragma once

#include <QCheckBox>
#include <QPushButton>
#include <QWidget>

namespace tarn {

/// A hairline across the popover.
class Divider : public QWidget {
  Q_OBJECT

 public:
  explicit Divider(QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;
};

/// A checkbox with its label.
class CheckBox : public QCheckBox {
  Q_OBJECT

 public:
  explicit CheckBox(const QString& label, QWidget* parent = nullptr);
  QSize sizeHint() const override;

 protected:
  bool hitButton(const QPoint& position) const override;
  void paintEvent(QPaintEvent* event) override;
};

/// A push button with round ends.
class PillButton : public QPushButton {
  Q_OBJECT

 public:
  explicit PillButton(const QString& label, QWidget* parent = nullptr);
  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
};

/// Text that leads to a web page when it is clicked.
class LinkButton : public QPushButton {
  Q_OBJECT

 public:
  explicit LinkButton(const QString& label, QWidget* parent = nullptr);
  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace tarn
