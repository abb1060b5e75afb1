// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/popover/popover_footer.hpp"

#include <QCoreApplication>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QHBoxLayout>
#include <QPainter>
#include <QSignalBlocker>
#include <QStringList>
#include <QVBoxLayout>
#include <cmath>

namespace tarn {

namespace {

/// VARIATION SELECTOR-16: the character before it is shown as an emoji.
constexpr char16_t emojiSelector = 0xfe0f;

/// A colour emoji font for emoji beside `text`; `text` itself if there is none.
QFont emojiFontBeside(const QFont& text) {
  const QStringList families = QFontDatabase::families();
  QFont font = text;
  for (const QString& family : {QStringLiteral("Noto Color Emoji"), QStringLiteral("Apple Color Emoji")}) {
    if (!families.contains(family)) continue;
    font.setFamily(family);
    // The shaping tables of an emoji font are large, and a single glyph needs no shaping.
    font.setStyleStrategy(QFont::PreferNoShaping);
    break;
  }
  return font;
}

}  // namespace

CreditLabel::CreditLabel(const QFont& font, TextStyle style, QWidget* parent)
    : TextLabel(font, style, Overflow::elide, parent), emojiFont_(emojiFontBeside(font)) {}

std::vector<CreditLabel::Run> CreditLabel::runs() const {
  std::vector<Run> runs;
  QString plain;
  for (const QChar character : text()) {
    plain += character;
    if (character.unicode() != emojiSelector) continue;
    const QString emoji = plain.right(2);
    plain.chop(emoji.size());
    runs.push_back({plain, false});
    runs.push_back({emoji, true});
    plain.clear();
  }
  runs.push_back({plain, false});
  return runs;
}

QSize CreditLabel::sizeHint() const {
  double width = 0;
  for (const Run& run : runs()) width += QFontMetricsF(fontFor(run)).horizontalAdvance(run.text);
  return {static_cast<int>(std::ceil(width)), QFontMetrics(font()).height()};
}

void CreditLabel::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setPen(palette().color(foregroundRole()));
  painter.setLayoutDirection(layoutDirection());
  const double baseline = (height() + fontMetrics().ascent() - fontMetrics().descent()) / 2.0;
  double x = 0;
  for (const Run& run : runs()) {
    painter.setFont(fontFor(run));
    painter.drawText(QPointF(x, baseline), run.text);
    x += QFontMetricsF(fontFor(run)).horizontalAdvance(run.text);
  }
}

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
          [this](bool isChecked) { preferences_.setShowFrontmostFootprint(isChecked); });
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
  auto* version = new TextLabel(font, TextStyle::tertiary, Overflow::elide);
  version->setText(QStringLiteral(" · v") + appVersion());

  auto* line = new QWidget;
  line->setLayoutDirection(Qt::LeftToRight);  // the three widgets form one English sentence
  auto* row = new QHBoxLayout(line);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(0);
  row->addStretch(1);
  for (QWidget* part :
       {static_cast<QWidget*>(credit), static_cast<QWidget*>(link), static_cast<QWidget*>(version)}) {
    row->addWidget(part, 0, Qt::AlignVCenter);
  }
  row->addStretch(1);
  return line;
}

}  // namespace tarn
