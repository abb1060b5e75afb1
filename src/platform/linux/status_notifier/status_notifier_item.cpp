// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/status_notifier/status_notifier_item.hpp"

#include <QGuiApplication>
#include <utility>

#include "platform/linux/status_notifier/notifier_properties.hpp"
#include "platform/linux/status_notifier/notifier_types.hpp"

namespace tarn {
namespace {

// No compositor's token is nearly as long.
constexpr qsizetype longestToken = 4096;

QString picturesKey() {
  return QStringLiteral("IconPixmap");
}

QString methodsAndSignals() {
  return QStringLiteral(
      "<method name=\"Activate\"><arg name=\"x\" type=\"i\" direction=\"in\"/>"
      "<arg name=\"y\" type=\"i\" direction=\"in\"/></method>\n"
      "<method name=\"SecondaryActivate\"><arg name=\"x\" type=\"i\" direction=\"in\"/>"
      "<arg name=\"y\" type=\"i\" direction=\"in\"/></method>\n"
      "<method name=\"ContextMenu\"><arg name=\"x\" type=\"i\" direction=\"in\"/>"
      "<arg name=\"y\" type=\"i\" direction=\"in\"/></method>\n"
      "<method name=\"Scroll\"><arg name=\"delta\" type=\"i\" direction=\"in\"/>"
      "<arg name=\"orientation\" type=\"s\" direction=\"in\"/></method>\n"
      "<method name=\"ProvideXdgActivationToken\"><arg name=\"token\" type=\"s\" "
      "direction=\"in\"/></method>\n"
      "<signal name=\"NewTitle\"/>\n<signal name=\"NewIcon\"/>\n<signal name=\"NewToolTip\"/>\n"
      "<signal name=\"NewIconAccessibleDesc\"/>\n"
      "<signal name=\"XAyatanaNewLabel\"><arg name=\"label\" type=\"s\"/><arg name=\"guide\" type=\"s\"/>"
      "</signal>\n");
}

// The window system lets a window come to the front only with the token of the click that asked for it; the
// toolkit's Wayland part takes it from the environment.
void keepActivationToken(const QString& token) {
  if (token.size() > longestToken || !QGuiApplication::platformName().startsWith(u"wayland")) return;
  qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8());
}

QVariantMap changes(const QVariantMap& before, const QVariantMap& after) {
  QVariantMap changed;
  for (auto property = after.begin(); property != after.end(); ++property) {
    if (before.value(property.key()) != property.value()) changed.insert(property.key(), property.value());
  }
  return changed;
}

}  // namespace

StatusNotifierItem::StatusNotifierItem(const QDBusConnection& bus, MenuBarLabel label, QObject* parent)
    : QObject(parent),
      label_(std::move(label)),
      properties_(
          (registerNotifierTypes(), notifierProperties(label_, kind_, notifierPictures(label_, kind_)))),
      object_(bus, QStringLiteral("/StatusNotifierItem"), interface()) {
  connect(this, &StatusNotifierItem::clicked, this, &StatusNotifierItem::activated, Qt::QueuedConnection);
}

void StatusNotifierItem::show(const MenuBarLabel& label) {
  if (label == label_) return;
  const bool looksTheSame =
      label.symbolName == label_.symbolName && label.tint == label_.tint && label.text == label_.text;
  label_ = label;
  // Pictures take longer than all the rest, and hardly ever change.
  update(looksTheSame ? properties_.value(picturesKey()) : notifierPictures(label_, kind_));
}

void StatusNotifierItem::setHostKind(HostKind kind) {
  if (kind == kind_) return;
  kind_ = kind;
  update(notifierPictures(label_, kind_));
}

BusInterface StatusNotifierItem::interface() {
  const auto click = [this](const QVariantList& arguments) -> std::optional<QVariantList> {
    const QPoint position(arguments.at(0).toInt(), arguments.at(1).toInt());
    // Some panels report the second press of a double click twice, which would open again what it closes. And
    // anybody on the bus may call: opening and closing at their pace would leave time for nothing else.
    if (!nextClick_.hasExpired()) return QVariantList();
    nextClick_.setRemainingTime(clickInterval);
    Q_EMIT clicked(position, QPrivateSignal());
    return QVariantList();
  };
  const auto ignored = [](const QVariantList&) -> std::optional<QVariantList> { return QVariantList(); };
  const auto token = [](const QVariantList& arguments) -> std::optional<QVariantList> {
    keepActivationToken(arguments.at(0).toString());
    return QVariantList();
  };
  // Panels call ContextMenu only when they cannot show the item's menu themselves; what it offers is in the
  // popover too.
  return {QStringLiteral("org.kde.StatusNotifierItem"),
          {{QStringLiteral("Activate"), {QStringLiteral("ii"), click}},
           {QStringLiteral("SecondaryActivate"), {QStringLiteral("ii"), click}},
           {QStringLiteral("ContextMenu"), {QStringLiteral("ii"), click}},
           {QStringLiteral("Scroll"), {QStringLiteral("is"), ignored}},
           {QStringLiteral("ProvideXdgActivationToken"), {QStringLiteral("s"), token}}},
          [this] { return properties_; },
          methodsAndSignals()};
}

void StatusNotifierItem::update(const QVariant& pictures) {
  const QVariantMap before = std::exchange(properties_, notifierProperties(label_, kind_, pictures));
  const QVariantMap changed = changes(before, properties_);
  if (changed.isEmpty()) return;
  // Panels that keep copies take the new values from here, before the signals below make them look.
  object_.sendPropertiesChanged(changed);
  if (changed.contains(QStringLiteral("Title"))) object_.sendSignal(QStringLiteral("NewTitle"));
  if (changed.contains(picturesKey())) object_.sendSignal(QStringLiteral("NewIcon"));
  if (changed.contains(QStringLiteral("ToolTip"))) object_.sendSignal(QStringLiteral("NewToolTip"));
  if (changed.contains(QStringLiteral("IconAccessibleDesc"))) {
    object_.sendSignal(QStringLiteral("NewIconAccessibleDesc"));
  }
  const QString label = QStringLiteral("XAyatanaLabel");
  if (changed.contains(label)) {
    object_.sendSignal(QStringLiteral("XAyatanaNewLabel"), {changed.value(label), QString()});
  }
}

}  // namespace tarn
