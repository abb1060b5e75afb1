// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/popover/popover_footer.hpp"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "ui/popover/credit_label.hpp"
#include "ui/widgets/text_label.hpp"

namespace tarn {

QString appVersion() {
  const QString version = QCoreApplication::applicationVersion();
  return version.isEmpty() ? QStringLiteral("1.0") : version;
}

PopoverFooter::PopoverFooter(Preferences& preferences, const Vendor& vendor, QWidget* parent)
    : QWidget(parent),
      preferences_(preferences),
      toggle_(new CheckBox(QStringLiteral("Show frontmost app in menu bar"))) {
  auto* quit = new PillButton(QStringLiteral("Quit"));
  toggle_->setFont(systemFont(11));
  quit->setFont(systemFont(11));

  auto* controls = new QHBoxLayout;
  controls->setSpacing(8);
  controls->addWidget(toggle_, 0, Qt::AlignVCenter);
  controls->addStretch(1);
  controls->addWidget(quit, 0, Qt::AlignVCenter);

  auto* stack = new QVBoxLayout(this);
  stack->setContentsMargins(0, 0, 0, 0);
  stack->setSpacing(8);
  stack->addLayout(controls);
  stack->addWidget(makeAboutLine(vendor));

  connect(toggle_, &QCheckBox::toggled, this,
          [this](bool ticked) { preferences_.setShowFrontmostFootprint(ticked); });
  connect(quit, &QPushButton::clicked, this, &PopoverFooter::quitRequested);
  showPreference();
}

void PopoverFooter::showPreference() {
  const QSignalBlocker blocker(toggle_);
  toggle_->setChecked(preferences_.showFrontmostFootprint());
}

QWidget* PopoverFooter::makeAboutLine(const Vendor& vendor) {
  const QFont font = systemFont(10);
  auto* credit = new CreditLabel(font, TextStyle::tertiary);
  credit->setText(QStringLiteral("Made with ❤️ by "));
  auto* link = new LinkButton(vendor.address);
  link->setFont(font);
  connect(link, &QPushButton::clicked, this, [this, url = vendor.url] { Q_EMIT urlRequested(url); });
  auto* version = new TextLabel(font, TextStyle::tertiary, Overflow::cuts);
  version->setText(QStringLiteral(" · v") + appVersion());

  auto* line = new QWidget;
  line->setLayoutDirection(Qt::LeftToRight);  // its pieces are one English sentence
  auto* row = new QHBoxLayout(line);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(0);
  row->addStretch(1);
  for (QWidget* piece :
       {static_cast<QWidget*>(credit), static_cast<QWidget*>(link), static_cast<QWidget*>(version)}) {
    row->addWidget(piece, 0, Qt::AlignVCenter);
  }
  row->addStretch(1);
  return line;
}

}  // namespace tarn
