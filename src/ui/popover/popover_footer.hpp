// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>
#include <QWidget>

#include "monitor/preferences.hpp"
#include "ui/widgets/controls.hpp"

namespace tarn {

/// The application's version as the about line shows it: its short version string, "1.0" without one.
QString appVersion();

/// The vendor shown in the about line.
struct Vendor {
  QString address;  ///< shown
  QString url;      ///< opened when the address is clicked
};

/// The popover's last block: the preference, Quit, and the about line.
class PopoverFooter : public QWidget {
  Q_OBJECT

 public:
  /// `preferences` outlives the footer.
  PopoverFooter(Preferences& preferences, const Vendor& vendor, QWidget* parent = nullptr);

  /// Shows the preference as it is now.
  void showPreference();

 Q_SIGNALS:
  void quitRequested();
  void urlRequested(const QString& url);

 private:
  QWidget* makeAboutLine(const Vendor& vendor);

  Preferences& preferences_;
  CheckBox* toggle_;
};

}  // namespace tarn
