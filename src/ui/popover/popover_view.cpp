// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/popover/popover_view.hpp"

#include <QHBoxLayout>
#include <utility>

#include "ui/popover/popover_content.hpp"
#include "ui/widgets/controls.hpp"

namespace tarn {

namespace {

constexpr int popoverWidth = 320;
constexpr int padding = 14;
constexpr int stackSpacing = 12;
constexpr int headerSpacing = 8;
constexpr int headerGlyph = 14;

/// The same text with no-break spaces, so that lines break after separators only.
QString breakingAfterSeparators(QString text) {
  text.replace(u' ', QChar(QChar::Nbsp));
  return text.replace(QStringLiteral("\u00a0·\u00a0"), QStringLiteral("\u00a0· "));
}

QVBoxLayout* makeStack(QWidget* widget) {
  auto* stack = new QVBoxLayout(widget);
  stack->setContentsMargins(0, 0, 0, 0);
  stack->setSpacing(stackSpacing);
  return stack;
}

}  // namespace

PopoverView::PopoverView(std::shared_ptr<MonitorViewModel> model, Preferences& preferences,
                         const Formatters& formatters, FileIconLoader loadFileIcon, const Vendor& vendor,
                         QWidget* parent)
    : QWidget(parent),
      model_(std::move(model)),
      preferences_(preferences),
      formatters_(formatters),
      icons_(std::move(loadFileIcon)),
      renderer_([this] { render(); }),
      tabPicker_(new TabPicker),
      footer_(new PopoverFooter(preferences, vendor)) {
  setFixedWidth(popoverWidth);
  auto* stack = makeStack(this);
  stack->setContentsMargins(0, padding, 0, padding);
  auto* statusLine = new QWidget;
  statusLine->setLayout(makeStatusLine());
  addInset(stack, statusLine);
  addInset(stack, tabPicker_);
  stack->addWidget(applicationSection_ = makeApplicationSection());
  stack->addWidget(systemSection_ = makeSystemSection());
  addInset(stack, new Divider);
  addInset(stack, footer_);

  tabPicker_->setTab(tab_);
  connect(tabPicker_, &TabPicker::tabSelected, this, &PopoverView::selectTab);
  connect(applicationList_, &ApplicationList::toggled, this, &PopoverView::toggle);
  connect(footer_, &PopoverFooter::quitRequested, this, &PopoverView::quitRequested);
  connect(footer_, &PopoverFooter::urlRequested, this, &PopoverView::urlRequested);
  const auto renderSoon = [this] {
    if (isVisible()) renderer_.schedule();
  };
  connect(model_.get(), &MonitorViewModel::willChange, this, renderSoon);
  connect(&preferences_, &Preferences::willChange, this, renderSoon);
  render();
}

QLayout* PopoverView::makeStatusLine() {
  statusGlyph_ = new GlyphView(headerGlyph, SymbolWeight::semibold);
  statusGlyph_->setFixedSize(headerGlyph, headerGlyph);
  statusText_ = new TextLabel(systemFont(13, QFont::Medium), TextStyle::primary, Overflow::wrap);
  auto* line = new QHBoxLayout;
  line->setContentsMargins(0, 0, 0, 0);
  line->setSpacing(headerSpacing);
  // The glyph is one point lower, level with the first line of text.
  auto* glyphColumn = new QVBoxLayout;
  glyphColumn->setContentsMargins(0, 1, 0, 0);
  glyphColumn->addWidget(statusGlyph_);
  glyphColumn->addStretch(1);
  line->addLayout(glyphColumn);
  line->addWidget(statusText_, 1, Qt::AlignTop);
  return line;
}

QWidget* PopoverView::makeApplicationSection() {
  auto* section = new QWidget;
  auto* stack = makeStack(section);
  // The list has margins around its rows.
  auto* list = new QVBoxLayout;
  list->setSpacing(stackSpacing - ApplicationList::highlightVerticalMargin);
  applicationList_ = new ApplicationList(icons_);
  auto* scroller = new ApplicationListScroller(applicationList_);
  // The list is wider than the other widgets: a row's highlight extends into the padding. A scroll bar takes
  // the rest of the padding on the trailing side.
  auto* wide = new QHBoxLayout;
  wide->setContentsMargins(0, 0, 0, 0);
  wide->addSpacing(padding - ApplicationList::highlightHorizontalMargin);
  applicationList_->setFixedWidth(popoverWidth - 2 * (padding - ApplicationList::highlightHorizontalMargin));
  wide->addWidget(scroller);
  addInset(list, new Divider);
  list->addLayout(wide, 1);
  addInset(list, new Divider);
  stack->addLayout(list, 1);

  detailLine_ = new TextLabel(systemFont(11), TextStyle::secondary, Overflow::wrap);
  explainer_ = new TextLabel(systemFont(10), TextStyle::tertiary, Overflow::wrap);
  addInset(stack, detailLine_);
  addInset(stack, explainer_);
  return section;
}

QWidget* PopoverView::makeSystemSection() {
  auto* section = new QWidget;
  auto* stack = makeStack(section);
  auto* footnote = new TextLabel(systemFont(10), TextStyle::tertiary, Overflow::wrap);
  footnote->setText(systemFootnote());
  addInset(stack, new Divider);
  addInset(stack, systemPanel_ = new SystemPanel);
  addInset(stack, new Divider);
  addInset(stack, footnote);
  return section;
}

void PopoverView::addInset(QVBoxLayout* stack, QWidget* widget) {
  auto* row = new QHBoxLayout;
  row->setContentsMargins(padding, 0, padding, 0);
  row->addWidget(widget);
  stack->addLayout(row);
}

void PopoverView::toggle(const std::string& id) {
  if (expanded_.erase(id) == 0) expanded_.insert(id);
  render();
}

void PopoverView::selectTab(PopoverTab tab) {
  tab_ = tab;
  render();
}

void PopoverView::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  renderer_.renderNow();
  model_->popoverOpened();
}

void PopoverView::hideEvent(QHideEvent* event) {
  QWidget::hideEvent(event);
  model_->popoverClosed();
}

void PopoverView::render() {
  renderStatusLine();
  const bool showsSystem = tab_ == PopoverTab::system;
  if (showsSystem) {
    renderSystem();
  } else {
    renderApplications();
  }
  applicationSection_->setVisible(!showsSystem);
  systemSection_->setVisible(showsSystem);
  footer_->showPreference();
}

void PopoverView::renderStatusLine() {
  const HeaderLine line = statusLine(tab_, model_->presentation(), model_->cpuPresentation());
  statusGlyph_->setSymbol(line.symbol, line.tint);
  statusText_->setText(line.text);
}

void PopoverView::renderApplications() {
  if (model_->snapshot())
    applicationList_->setRows(applicationRows(*model_->snapshot(), tab_, expanded_, formatters_));
  const QString detail =
      detailString(tab_, model_->snapshot(), model_->cpuPresentation(), model_->thermalState(), formatters_);
  detailLine_->setText(breakingAfterSeparators(detail));
  detailLine_->setAccessibleName(detail);
  explainer_->setText(explainer(tab_));
}

void PopoverView::renderSystem() {
  if (model_->extras())
    systemPanel_->setRows(systemRows(*model_->extras(), model_->thermalState(), formatters_));
}

}  // namespace tarn
