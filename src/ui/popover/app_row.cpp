// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/popover/app_row.hpp"

#include <QAccessible>
#include <QEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <utility>

namespace tarn {

namespace {

constexpr int iconSize = 32;  ///< points
constexpr QSize chevronFrame(10, 18);
constexpr int processIndent = rowIconFrame + rowSpacing;  ///< aligns process lines with the row's name
constexpr int stackSpacing = 2;

QString chevronName(const RowContent& content, bool isRightToLeft) {
  if (!content.canExpand) return {};
  if (content.isExpanded) return QStringLiteral("chevron.down");
  return isRightToLeft ? QStringLiteral("chevron.left") : QStringLiteral("chevron.right");
}

}  // namespace

AppIconProvider::AppIconProvider(FileIconLoader loadFileIcon) : loadFileIcon_(std::move(loadFileIcon)) {}

AppIcon AppIconProvider::icon(const RowContent& row, double scale) {
  if (!row.bundlePath) return {{}, row.symbol};
  auto cached = cache_.find(*row.bundlePath);
  if (cached == cache_.end()) {
    cached = cache_.emplace(*row.bundlePath, loadFileIcon_(*row.bundlePath)).first;
  }
  const QPixmap image = cached->second.pixmap(QSize(iconSize, iconSize), scale);
  // Without any icon theme the image is null.
  return image.isNull() ? AppIcon{{}, row.symbol} : AppIcon{image, {}};
}

RowText::RowText()
    : name_(new TextLabel(systemFont(12, QFont::Medium), TextStyle::primary, Overflow::elide)),
      secondary_(new TextLabel(systemFont(10), TextStyle::secondary, Overflow::elide)) {
  constexpr int nameHeight = 18;
  name_->setFixedHeight(nameHeight);
  secondary_->setFixedHeight(smallLineHeight);
  setSpacing(1);
  addWidget(name_);
  addWidget(secondary_);
}

void RowText::setTexts(const QString& name, const std::optional<QString>& secondary) {
  name_->setText(name);
  secondary_->setText(secondary.value_or(QString()));
  secondary_->setVisible(secondary.has_value());
}

AppIconView::AppIconView(QWidget* parent) : GlyphView(rowIconFrame, SymbolWeight::regular, parent) {
  setFixedSize(rowIconFrame, rowIconFrame);
}

void AppIconView::setIcon(const AppIcon& icon) {
  setSymbol(icon.symbolName, TextStyle::secondary);
  if (image_.cacheKey() == icon.image.cacheKey()) return;
  image_ = icon.image;
  update();
}

void AppIconView::paintEvent(QPaintEvent* event) {
  if (image_.isNull()) {
    GlyphView::paintEvent(event);
    return;
  }
  QPainter painter(this);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  painter.drawPixmap(rect(), image_);
}

AppRowButton::AppRowButton(QWidget* parent)
    : QPushButton(parent),
      icon_(new AppIconView(this)),
      texts_(new RowText),
      value_(new FigureLabel(systemFont(12), TextStyle::secondary)),
      chevron_(new GlyphView(9, SymbolWeight::semibold)) {
  setAttribute(Qt::WA_Hover);
  setFocusPolicy(Qt::TabFocus);  // a click shows no focus ring
  setAutoDefault(true);          // the Return key clicks it
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  chevron_->setFixedSize(chevronFrame);

  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(rowSpacing);
  row->addWidget(icon_, 0, Qt::AlignVCenter);
  row->addLayout(texts_, 1);
  row->addWidget(value_, 0, Qt::AlignVCenter);
  row->addWidget(chevron_, 0, Qt::AlignVCenter);
}

void AppRowButton::setContent(const RowContent& content, const AppIcon& icon) {
  canExpand_ = content.canExpand;
  isExpanded_ = content.isExpanded;
  setEnabled(content.canExpand);
  setAccessibleName(content.name + QStringLiteral(", ") + content.value);
  setAccessibleDescription(content.secondary.value_or(QString()));
  icon_->setIcon(icon);
  texts_->setTexts(content.name, content.secondary);
  value_->setText(content.value);
  value_->updateGeometry();
  chevron_->setSymbol(chevronName(content, isRightToLeft()), TextStyle::tertiary);
  updateGeometry();
}

void AppRowButton::setIcon(const AppIcon& icon) {
  icon_->setIcon(icon);
}

bool AppRowButton::isHighlighted() const {
  return isEnabled() && (underMouse() || hasFocus());
}

QSize AppRowButton::sizeHint() const {
  return layout()->sizeHint();
}

bool AppRowButton::event(QEvent* event) {
  const bool handled = QPushButton::event(event);
  switch (event->type()) {
    case QEvent::HoverEnter:
    case QEvent::HoverLeave:
    case QEvent::FocusIn:
    case QEvent::FocusOut:
    case QEvent::EnabledChange:
      Q_EMIT highlightChanged();
      break;
    default:
      break;
  }
  return handled;
}

void AppRowButton::paintEvent(QPaintEvent* /*event*/) {}

ProcessLineView::ProcessLineView(QWidget* parent)
    : QWidget(parent),
      name_(new TextLabel(systemFont(10), TextStyle::secondary, Overflow::elide)),
      pid_(new TextLabel(systemFont(10), TextStyle::tertiary, Overflow::elide)),
      value_(new FigureLabel(systemFont(10), TextStyle::tertiary)) {
  setFixedHeight(smallLineHeight);
  name_->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
  pid_->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  auto* line = new QHBoxLayout(this);
  line->setContentsMargins(0, 0, 0, 0);
  line->setSpacing(6);
  line->addSpacing(processIndent);
  line->addWidget(name_);
  line->addWidget(pid_);
  line->addStretch(1);
  line->addWidget(value_);
}

void ProcessLineView::setContent(const ProcessLine& content) {
  name_->setText(content.name);
  pid_->setText(content.pidText);
  value_->setText(content.value);
}

AppRow::AppRow(QWidget* parent)
    : QWidget(parent), layout_(new QVBoxLayout(this)), button_(new AppRowButton(this)) {
  layout_->setContentsMargins(0, 0, 0, 0);
  layout_->setSpacing(stackSpacing);
  layout_->addWidget(button_);
  connect(button_, &QPushButton::clicked, this, [this] { Q_EMIT toggled(content_.id); });
}

void AppRow::setContent(const RowContent& content, const AppIcon& icon) {
  if (content == content_) {
    button_->setIcon(icon);  // the screen's scale may have changed
    return;
  }
  const bool expansionChanged = content.isExpanded != content_.isExpanded;
  content_ = content;
  button_->setContent(content, icon);
  showProcesses(content.processes);
  if (!expansionChanged) return;
  QAccessible::State changed;
  changed.expanded = true;
  QAccessibleStateChangeEvent event(button_, changed);
  QAccessible::updateAccessibility(&event);
}

void AppRow::showProcesses(const std::vector<ProcessLine>& processes) {
  setWidgetCount(lines_, processes.size(), *layout_, this);
  for (std::size_t i = 0; i < processes.size(); ++i) lines_[i]->setContent(processes[i]);
}

}  // namespace tarn
