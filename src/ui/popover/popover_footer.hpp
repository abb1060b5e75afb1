// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QFont>
#include <QString>
#include <QWidget>
#include <vector>

#include "monitor/preferences.hpp"
#include "ui/widgets/controls.hpp"
#include "ui/widgets/text_label.hpp"

namespace tarn {

/// The application's version as the about line shows it. "1.0" if the application has none.
QString appVersion();

/// The vendor shown in the about line.
struct Vendor {
  QString address;  ///< the text of the link
  QString url;      ///< opened when the link is clicked
};

/// One line of text whose emoji are drawn with a colour emoji font, if one is installed. Many text fonts have
/// black glyphs for emoji.
class CreditLabel : public TextLabel {
  Q_OBJECT

 public:
  CreditLabel(const QFont& font, TextStyle style, QWidget* parent = nullptr);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  struct Run {
    QString text;
    bool isEmoji = false;
  };

  std::vector<Run> runs() const;
  const QFont& fontFor(const Run& run) const { return run.isEmoji ? emojiFont_ : font(); }

  QFont emojiFont_;
};

/// The popover's last block: the preference, Quit, and the about line.
class PopoverFooter : public QWidget {
  Q_OBJECT

 public:
  /// `preferences` outlives the footer.
  PopoverFooter(Preferences& preferences, const Vendor& vendor, QWidget* parent = nullptr);

  /// Updates the check box to the preference's current value.
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
