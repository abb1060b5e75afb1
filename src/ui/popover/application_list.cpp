// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/popover/application_list.hpp"

#include <QEvent>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>
#include <utility>

#include "ui/widgets/painting.hpp"

namespace tarn {

namespace {

constexpr int spacingOfRows = 2;
constexpr int highlightRadius = 6;
constexpr int minimumScrolledHeight = 80;

}  // namespace

ApplicationList::ApplicationList(AppIconProvider& icons, QWidget* parent)
    : QWidget(parent),
      icons_(icons),
      layout_(new QVBoxLayout(this)),
      placeholder_(makePlaceholder(QStringLiteral("Measuring…"))),
      beforeRows_(new QWidget(this)) {
  beforeRows_->hide();
  beforeRows_->setFocusPolicy(Qt::TabFocus);
  layout_->setContentsMargins(highlightHorizontalMargin, highlightVerticalMargin, highlightHorizontalMargin,
                              highlightVerticalMargin);
  layout_->setSpacing(spacingOfRows);
  layout_->addWidget(placeholder_);
}

void ApplicationList::setRows(const std::vector<RowContent>& rows) {
  placeholder_->hide();
  std::vector<AppRow*> arranged;
  arranged.reserve(rows.size());
  for (const RowContent& content : rows) arranged.push_back(takeRow(content.id));
  // Rows of groups that left the list are reused for groups that entered it.
  for (AppRow*& row : arranged) {
    if (row == nullptr) row = spareRow();
  }
  // Deleted later: a click on one of these rows may have caused this call.
  for (AppRow* spare : rows_) {
    layout_->removeWidget(spare);
    spare->hide();
    spare->deleteLater();
  }

  for (std::size_t i = 0; i < rows.size(); ++i) {
    const int position = static_cast<int>(i) + 1;  // after the placeholder
    if (layout_->indexOf(arranged[i]) != position) layout_->insertWidget(position, arranged[i]);
    arranged[i]->show();
    arranged[i]->setContent(rows[i], icons_.icon(rows[i], devicePixelRatioF()));
  }
  const bool moved = arranged != std::exchange(rows_, arranged);
  if (moved) updateReadingOrder();
  update();
}

AppRow* ApplicationList::takeRow(const std::string& groupID) {
  const auto position =
      std::find_if(rows_.begin(), rows_.end(), [&](const AppRow* row) { return row->groupID() == groupID; });
  if (position == rows_.end()) return nullptr;
  AppRow* row = *position;
  rows_.erase(position);
  return row;
}

AppRow* ApplicationList::spareRow() {
  if (!rows_.empty()) {
    AppRow* spare = rows_.back();
    rows_.pop_back();
    return spare;
  }
  auto* row = new AppRow(this);
  connect(row, &AppRow::toggled, this, &ApplicationList::toggled);
  connect(row->button(), &AppRowButton::highlightChanged, this, qOverload<>(&QWidget::update));
  return row;
}

void ApplicationList::updateReadingOrder() {
  QWidget* previous = beforeRows_;
  for (AppRow* row : rows_) {
    row->raise();  // assistive technology reads siblings in their stacking order
    setTabOrder(previous, row->button());
    previous = row->button();
  }
}

void ApplicationList::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const Theme& theme = themeOf(*this);
  for (const AppRow* row : rows_) {
    const AppRowButton* button = row->button();
    if (!button->isHighlighted()) continue;
    const QRectF content(button->mapTo(this, QPoint(0, 0)), button->size());
    const QRectF frame = content.adjusted(-highlightHorizontalMargin, -highlightVerticalMargin,
                                          highlightHorizontalMargin, highlightVerticalMargin);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.highlight);
    painter.drawRoundedRect(frame, highlightRadius, highlightRadius);
    if (button->hasFocus()) drawFocusRing(painter, frame, highlightRadius, theme);
  }
}

ApplicationListScroller::ApplicationListScroller(ApplicationList* list, QWidget* parent)
    : QScrollArea(parent) {
  setFrameShape(QFrame::NoFrame);
  setWidgetResizable(true);
  setFocusPolicy(Qt::NoFocus);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
  viewport()->setAutoFillBackground(false);
  setWidget(list);
  list->setAutoFillBackground(false);
  list->installEventFilter(this);
}

QSize ApplicationListScroller::sizeHint() const {
  return widget()->sizeHint();
}

QSize ApplicationListScroller::minimumSizeHint() const {
  return {0, std::min(minimumScrolledHeight, widget()->sizeHint().height())};
}

bool ApplicationListScroller::eventFilter(QObject* watched, QEvent* event) {
  if (watched == widget() && event->type() == QEvent::LayoutRequest) updateGeometry();
  return QScrollArea::eventFilter(watched, event);
}

}  // namespace tarn
