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
#include "ui/popover/app_icon_provider.hpp"
#include "ui/popover/application_list.hpp"
#include "ui/popover/popover_footer.hpp"
#include "ui/popover/popover_tab.hpp"
#include "ui/popover/system_panel.hpp"
#include "ui/popover/tab_picker.hpp"
#include "ui/widgets/glyph_view.hpp"
#include "ui/widgets/render_scheduler.hpp"
#include "ui/widgets/text_label.hpp"

namespace tarn {

/// The root view of the popover: verdict, tab picker, the tab's content, footer. 320 points wide, as high as
/// its content. The chosen tab and the open rows last as long as the view.
///
/// Coming on screen and leaving it are passed on to the view model. While it is hidden it renders nothing.
class PopoverView : public QWidget {
  Q_OBJECT

 public:
  /// `prefs` outlives the view.
  PopoverView(std::shared_ptr<MonitorViewModel> model, Preferences& prefs, FileIconLoader loadFileIcon,
              const Vendor& vendor, QWidget* parent = nullptr);

  /// Opens a closed row and closes an open one.
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

  void chooseTab(PopoverTab tab);
  void render();
  void renderStatusLine();
  void renderApplications();
  void renderSystem();

  std::shared_ptr<MonitorViewModel> model_;
  Preferences& prefs_;
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
