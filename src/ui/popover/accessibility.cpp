// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/popover/accessibility.hpp"

#include <QAccessible>
#include <QAccessibleObject>
#include <QAccessibleWidget>
#include <QApplication>
#include <QWidgetList>

#include "ui/popover/app_row.hpp"
#include "ui/popover/popover_window.hpp"
#include "ui/popover/tab_picker.hpp"
#include "ui/widgets/controls.hpp"

namespace tarn {

namespace {

/// A push button that can be expanded or collapsed.
class RowAccessible : public QAccessibleWidget {
 public:
  explicit RowAccessible(AppRowButton* button)
      : QAccessibleWidget(button, QAccessible::Button), button_(button) {
    addControllingSignal(QStringLiteral("clicked(bool)"));
  }

  QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    state.expandable = button_->canExpand();
    state.expanded = button_->canExpand() && button_->isExpanded();
    state.collapsed = button_->canExpand() && !button_->isExpanded();
    return state;
  }

  QStringList actionNames() const override {
    QStringList names = QAccessibleWidget::actionNames();
    if (button_->isEnabled()) names.prepend(pressAction());
    return names;
  }

  void doAction(const QString& name) override {
    if (name == pressAction()) {
      button_->click();
    } else {
      QAccessibleWidget::doAction(name);
    }
  }

 private:
  AppRowButton* button_;
};

/// The tabs, as a named group.
class TabPickerAccessible : public QAccessibleWidget {
 public:
  explicit TabPickerAccessible(TabPicker* picker) : QAccessibleWidget(picker, QAccessible::Grouping) {}
};

/// The popover. Qt reports a popup as a plain container.
class PopoverAccessible : public QAccessibleWidget {
 public:
  explicit PopoverAccessible(PopoverWindow* window) : QAccessibleWidget(window, QAccessible::Dialog) {}
};

class LinkAccessible : public QAccessibleWidget {
 public:
  explicit LinkAccessible(LinkButton* link)
      : QAccessibleWidget(link, QAccessible::Link, link->text()), link_(link) {}

  QStringList actionNames() const override { return {pressAction()}; }

  void doAction(const QString& name) override {
    if (name == pressAction()) link_->click();
  }

 private:
  LinkButton* link_;
};

/// The application with all its visible windows. Qt leaves out popups.
class ApplicationAccessible : public QAccessibleObject {
 public:
  explicit ApplicationAccessible(QApplication* application) : QAccessibleObject(application) {}

  QAccessibleInterface* parent() const override { return nullptr; }
  int childCount() const override { return static_cast<int>(windows().size()); }

  QAccessibleInterface* child(int index) const override {
    return QAccessible::queryAccessibleInterface(windows().value(index));
  }

  int indexOfChild(const QAccessibleInterface* child) const override {
    return static_cast<int>(windows().indexOf(qobject_cast<QWidget*>(child->object())));
  }

  QString text(QAccessible::Text kind) const override {
    return kind == QAccessible::Name ? QGuiApplication::applicationDisplayName() : QString();
  }

  QAccessible::Role role() const override { return QAccessible::Application; }

  QAccessible::State state() const override {
    QAccessible::State state;
    state.active = QApplication::activeWindow() != nullptr;
    return state;
  }

 private:
  static QWidgetList windows() {
    QWidgetList shown;
    for (QWidget* window : QApplication::topLevelWidgets()) {
      if (window->isVisible()) shown.append(window);
    }
    return shown;
  }
};

QAccessibleInterface* makeInterface(const QString& /*className*/, QObject* object) {
  if (auto* row = qobject_cast<AppRowButton*>(object)) return new RowAccessible(row);
  if (auto* picker = qobject_cast<TabPicker*>(object)) return new TabPickerAccessible(picker);
  if (auto* window = qobject_cast<PopoverWindow*>(object)) return new PopoverAccessible(window);
  if (auto* link = qobject_cast<LinkButton*>(object)) return new LinkAccessible(link);
  if (auto* application = qobject_cast<QApplication*>(object)) return new ApplicationAccessible(application);
  return nullptr;
}

}  // namespace

void installAccessibility() {
  QAccessible::installFactory(makeInterface);
}

}  // namespace tarn
