// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/status_notifier/status_notifier_item.hpp"

#include <QDBusObjectPath>
#include <QFont>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>
#include <QStringList>
#include <cmath>
#include <utility>

#include "platform/linux/status_notifier/notifier_types.hpp"
#include "ui/menu_bar/menu_bar_label.hpp"

namespace tarn {
namespace {

// Sizes are given in points for an icon of this height and scale with the icon.
constexpr double nominalHeight = 22.0;
constexpr double gapPoints = 3.0;
constexpr double textPoints = 13.0;

constexpr qsizetype maxTokenSize = 4096;  // tokens of compositors are much shorter

const QString iconPixmapProperty = QStringLiteral("IconPixmap");

QString introspection() {
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

// A Wayland compositor activates a window only with the token of a recent click (xdg-activation-v1). Qt's
// Wayland plugin takes the token from the environment when it next activates a window.
void storeActivationToken(const QString& token) {
  if (token.size() > maxTokenSize || !QGuiApplication::platformName().startsWith(u"wayland")) return;
  qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8());
}

QVariantMap changedProperties(const QVariantMap& before, const QVariantMap& after) {
  QVariantMap changed;
  for (auto property = after.begin(); property != after.end(); ++property) {
    if (before.value(property.key()) != property.value()) changed.insert(property.key(), property.value());
  }
  return changed;
}

}  // namespace

QImage circleIcon(const MenuBarLabel& label, int pixels) {
  return MenuBarIcon::image(label.symbolName, MenuBarIcon::color(label.tint), pixels);
}

QImage labelledIcon(const MenuBarLabel& label, int pixels) {
  if (!label.text || label.text->isEmpty()) return circleIcon(label, pixels);
  const double scale = pixels / nominalHeight;
  QFont font = QGuiApplication::font();
  font.setPixelSize(static_cast<int>(std::lround(textPoints * scale)));
  font.setWeight(QFont::DemiBold);
  const QFontMetricsF metrics(font);
  const double textLeft = pixels + gapPoints * scale;
  const int width = static_cast<int>(std::ceil(textLeft + metrics.horizontalAdvance(*label.text) + scale));

  QImage image(width, pixels, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.drawImage(0, 0, circleIcon(label, pixels));
  painter.setFont(font);
  // The panel's background is unknown: this color contrasts with light and with dark panels.
  painter.setPen(MenuBarIcon::color(Tint::secondary));
  painter.drawText(QRectF(textLeft, 0, width - textLeft, pixels), Qt::AlignLeft | Qt::AlignVCenter,
                   *label.text);
  return image;
}

QString itemTitle(const MenuBarLabel& label) {
  const QString name = QStringLiteral("Tarn");
  return label.toolTip.footprint ? QStringLiteral("%1 — %2").arg(name, *label.toolTip.footprint) : name;
}

QString itemToolTipText(const MenuBarLabel& label) {
  QStringList lines;
  if (!label.toolTip.detail.isEmpty()) lines << label.toolTip.detail;
  if (label.toolTip.footprint)
    lines << QStringLiteral("Frontmost application: %1").arg(*label.toolTip.footprint);
  return lines.join(u'\n');
}

QVariant itemIconPixmaps(const MenuBarLabel& label, HostKind kind) {
  IconPixmaps pixmaps;
  for (const int pixels : panelIconSizes) {
    const bool isWide = kind == HostKind::wideIcons;
    pixmaps << iconPixmap(isWide ? labelledIcon(label, pixels) : circleIcon(label, pixels));
  }
  return QVariant::fromValue(pixmaps);
}

// The StatusNotifierItem specification describes all of these, except for two extensions: IconAccessibleDesc
// (a text for assistive technology) and XAyatanaLabel (a text beside the icon), both from AppIndicator.
QVariantMap itemProperties(const MenuBarLabel& label, HostKind kind, const QVariant& iconPixmaps) {
  const NotifierToolTip toolTip{QString(), {}, label.toolTip.status, itemToolTipText(label).toHtmlEscaped()};
  QVariantMap properties{
      {QStringLiteral("Category"), QStringLiteral("SystemServices")},
      {QStringLiteral("Id"), QStringLiteral("tarn")},
      {QStringLiteral("Title"), itemTitle(label)},
      {QStringLiteral("Status"), QStringLiteral("Active")},
      {QStringLiteral("IconName"), QString()},
      {QStringLiteral("IconPixmap"), iconPixmaps},
      {QStringLiteral("IconAccessibleDesc"), label.accessibilityText},
      {QStringLiteral("ToolTip"), QVariant::fromValue(toolTip)},
      {QStringLiteral("ItemIsMenu"), false},
      {QStringLiteral("Menu"), QVariant::fromValue(QDBusObjectPath(itemMenuPath()))},
  };
  // Other panels may show this property instead of the icon.
  if (kind == HostKind::ayatanaLabel) {
    properties.insert(QStringLiteral("XAyatanaLabel"), label.text.value_or(QString()));
  }
  return properties;
}

QString itemMenuPath() {
  return QStringLiteral("/StatusNotifierItem/Menu");
}

StatusNotifierItem::StatusNotifierItem(const QDBusConnection& bus, MenuBarLabel label, QObject* parent)
    : QObject(parent),
      label_(std::move(label)),
      properties_(itemProperties(label_, kind_, itemIconPixmaps(label_, kind_))),
      object_(bus, QStringLiteral("/StatusNotifierItem"), interface()) {
  registerNotifierTypes();
  connect(&object_, &BusObject::burstEnded, this, &StatusNotifierItem::burstEnded);
  connect(this, &StatusNotifierItem::clickReceived, this, &StatusNotifierItem::activated,
          Qt::QueuedConnection);
}

void StatusNotifierItem::show(const MenuBarLabel& label) {
  if (label == label_) return;
  const bool hasSameIcon =
      label.symbolName == label_.symbolName && label.tint == label_.tint && label.text == label_.text;
  label_ = label;
  update(hasSameIcon ? properties_.value(iconPixmapProperty) : itemIconPixmaps(label_, kind_));
}

void StatusNotifierItem::setHostKind(HostKind kind) {
  if (kind == kind_) return;
  kind_ = kind;
  update(itemIconPixmaps(label_, kind_));
}

BusInterface StatusNotifierItem::interface() {
  const auto click = [this](const QVariantList& arguments) -> std::optional<QVariantList> {
    const QPoint position(arguments.at(0).toInt(), arguments.at(1).toInt());
    // Some panels report the second press of a double click twice, which would reopen the popover that it
    // closes. Any process on the bus can send any number of clicks.
    if (!nextClick_.hasExpired()) return QVariantList();
    nextClick_.setRemainingTime(clickInterval);
    Q_EMIT clickReceived(position, QPrivateSignal());
    return QVariantList();
  };
  const auto ignored = [](const QVariantList&) -> std::optional<QVariantList> { return QVariantList(); };
  const auto token = [](const QVariantList& arguments) -> std::optional<QVariantList> {
    storeActivationToken(arguments.at(0).toString());
    return QVariantList();
  };
  // Panels call ContextMenu only when they cannot draw the item's menu. The popover offers the same choices.
  return {QStringLiteral("org.kde.StatusNotifierItem"),
          {{QStringLiteral("Activate"), {QStringLiteral("ii"), click}},
           {QStringLiteral("SecondaryActivate"), {QStringLiteral("ii"), click}},
           {QStringLiteral("ContextMenu"), {QStringLiteral("ii"), click}},
           {QStringLiteral("Scroll"), {QStringLiteral("is"), ignored}},
           {QStringLiteral("ProvideXdgActivationToken"), {QStringLiteral("s"), token}}},
          [this] { return properties_; },
          introspection()};
}

void StatusNotifierItem::update(const QVariant& iconPixmaps) {
  const QVariantMap before = std::exchange(properties_, itemProperties(label_, kind_, iconPixmaps));
  const QVariantMap changed = changedProperties(before, properties_);
  if (changed.isEmpty()) return;
  // Panels that cache properties update them from this signal; StatusNotifierItem's own signals, which make
  // panels redraw, have to come later.
  object_.sendPropertiesChanged(changed);
  if (changed.contains(QStringLiteral("Title"))) object_.sendSignal(QStringLiteral("NewTitle"));
  if (changed.contains(iconPixmapProperty)) object_.sendSignal(QStringLiteral("NewIcon"));
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
