// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QVBoxLayout>
#include <QWidget>
#include <memory>
#include <set>
#include <string>

#include "monitor/monitor_view_model.hpp"
#include "monitor/preferences.hpp"
#include "ui/popover/app_row.hpp"
#include "ui/popover/application_list.hpp"
#include "ui/popover/popover_content.hpp"
#include "ui/popover/popover_footer.hpp"
#include "ui/popover/system_panel.hpp"
#include "ui/popover/tab_picker.hpp"
#include "ui/widgets/controls.hpp"
#include "ui/widgets/render_scheduler.hpp"
#include "ui/widgets/text_label.hpp"

namespace tarn {

/// The root view of the popover: status line, tab picker, the tab's content, footer. 320 points wide, as high
/// as its content. It keeps the selected tab and the expanded rows while it is hidden.
///
/// It calls the view model's popoverOpened() and popoverClosed() when it is shown and hidden. While it is
/// hidden it renders nothing.
class PopoverView : public QWidget {
  Q_OBJECT

 public:
  /// `preferences` and the formatters outlive the view.
  PopoverView(std::shared_ptr<MonitorViewModel> model, Preferences& preferences, const Formatters& formatters,
              FileIconLoader loadFileIcon, const Vendor& vendor, QWidget* parent = nullptr);

  /// Expands or collapses a row.
  void toggle(const std::string& id);

  PopoverTab tab() const { return tab_; }

 Q_SIGNALS:
  void quitRequested();

  /// The user clicked a link.
  void urlRequested(const QString& url);

 protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  QLayout* makeStatusLine();
  QWidget* makeApplicationSection();
  QWidget* makeSystemSection();
  void addInset(QVBoxLayout* stack, QWidget* widget);

  void selectTab(PopoverTab tab);
  void render();
  void renderStatusLine();
  void renderApplications();
  void renderSystem();

  std::shared_ptr<MonitorViewModel> model_;
  Preferences& preferences_;
  Formatters formatters_;
  AppIconProvider icons_;
  std::set<std::string> expanded_;
  PopoverTab tab_ = PopoverTab::memory;
  RenderScheduler renderer_;

  GlyphView* statusGlyph_ = nullptr;
  TextLabel* statusText_ = nullptr;
  TabPicker* tabPicker_ = nullptr;
  QWidget* applicationSection_ = nullptr;
  ApplicationList* applicationList_ = nullptr;
  TextLabel* detailLine_ = nullptr;
  TextLabel* explainer_ = nullptr;
  QWidget* systemSection_ = nullptr;
  SystemPanel* systemPanel_ = nullptr;
  PopoverFooter* footer_ = nullptr;
};

}  // namespace tarn
