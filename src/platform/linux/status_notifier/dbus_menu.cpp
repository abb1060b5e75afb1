// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/status_notifier/dbus_menu.hpp"

#include <QDBusVariant>
#include <QStringList>
#include <algorithm>
#include <utility>

#include "platform/linux/status_notifier/notifier_types.hpp"
#include "platform/linux/status_notifier/status_notifier_item.hpp"

namespace tarn {
namespace {

using Result = std::optional<QVariantList>;  // as BusMethod::call returns it

// The ids of the menu items. The protocol reserves 0 for the root.
constexpr int rootItem = 0;
constexpr int openItem = 1;
constexpr int quitItem = 2;
constexpr int items[] = {rootItem, openItem, quitItem};
constexpr uint revision = 1;

bool isItem(int id) {
  return std::find(std::begin(items), std::end(items), id) != std::end(items);
}

// Those properties of the menu item `id` that `names` lists; all of them when the list is empty.
QVariantMap menuItemProperties(int id, const QStringList& names) {
  QVariantMap properties;
  if (id == rootItem) {
    properties.insert(QStringLiteral("children-display"), QStringLiteral("submenu"));
  } else {
    properties.insert(QStringLiteral("label"),
                      id == openItem ? QStringLiteral("Open") : QStringLiteral("Quit"));
    properties.insert(QStringLiteral("enabled"), true);
    properties.insert(QStringLiteral("visible"), true);
  }
  if (names.isEmpty()) return properties;
  QVariantMap selected;
  for (const QString& name : names) {
    if (properties.contains(name)) selected.insert(name, properties.value(name));
  }
  return selected;
}

Result getLayout(const QVariantList& arguments) {
  const int id = arguments.at(0).toInt();
  const int depth = arguments.at(1).toInt();
  const QStringList names = arguments.at(2).toStringList();
  if (!isItem(id)) return std::nullopt;
  DBusMenuLayout result{id, menuItemProperties(id, names), {}};
  if (id == rootItem && depth != 0) {
    result.children = {{openItem, menuItemProperties(openItem, names), {}},
                       {quitItem, menuItemProperties(quitItem, names), {}}};
  }
  return QVariantList{revision, QVariant::fromValue(result)};
}

Result getGroupProperties(const QVariantList& arguments) {
  const auto ids = qdbus_cast<QList<int>>(arguments.at(0));
  const QStringList names = arguments.at(1).toStringList();
  QList<DBusMenuItem> result;
  for (const int id : items) {
    if (ids.isEmpty() || ids.contains(id)) result << DBusMenuItem{id, menuItemProperties(id, names)};
  }
  return QVariantList{QVariant::fromValue(result)};
}

Result getProperty(const QVariantList& arguments) {
  const int id = arguments.at(0).toInt();
  const QString name = arguments.at(1).toString();
  const QVariant value = isItem(id) ? menuItemProperties(id, {}).value(name) : QVariant();
  if (!value.isValid()) return std::nullopt;
  return QVariantList{QVariant::fromValue(QDBusVariant(value))};
}

QString introspection() {
  return QStringLiteral(
      "<method name=\"GetLayout\"><arg name=\"parentId\" type=\"i\" direction=\"in\"/>"
      "<arg name=\"recursionDepth\" type=\"i\" direction=\"in\"/>"
      "<arg name=\"propertyNames\" type=\"as\" direction=\"in\"/>"
      "<arg name=\"revision\" type=\"u\" direction=\"out\"/>"
      "<arg name=\"layout\" type=\"(ia{sv}av)\" direction=\"out\"/></method>\n"
      "<method name=\"GetGroupProperties\"><arg name=\"ids\" type=\"ai\" direction=\"in\"/>"
      "<arg name=\"propertyNames\" type=\"as\" direction=\"in\"/>"
      "<arg name=\"properties\" type=\"a(ia{sv})\" direction=\"out\"/></method>\n"
      "<method name=\"GetProperty\"><arg name=\"id\" type=\"i\" direction=\"in\"/>"
      "<arg name=\"name\" type=\"s\" direction=\"in\"/>"
      "<arg name=\"value\" type=\"v\" direction=\"out\"/></method>\n"
      "<method name=\"Event\"><arg name=\"id\" type=\"i\" direction=\"in\"/>"
      "<arg name=\"eventId\" type=\"s\" direction=\"in\"/><arg name=\"data\" type=\"v\" direction=\"in\"/>"
      "<arg name=\"timestamp\" type=\"u\" direction=\"in\"/></method>\n"
      "<method name=\"EventGroup\"><arg name=\"events\" type=\"a(isvu)\" direction=\"in\"/>"
      "<arg name=\"idErrors\" type=\"ai\" direction=\"out\"/></method>\n"
      "<method name=\"AboutToShow\"><arg name=\"id\" type=\"i\" direction=\"in\"/>"
      "<arg name=\"needUpdate\" type=\"b\" direction=\"out\"/></method>\n"
      "<method name=\"AboutToShowGroup\"><arg name=\"ids\" type=\"ai\" direction=\"in\"/>"
      "<arg name=\"updatesNeeded\" type=\"ai\" direction=\"out\"/>"
      "<arg name=\"idErrors\" type=\"ai\" direction=\"out\"/></method>\n"
      "<signal name=\"ItemsPropertiesUpdated\"><arg type=\"a(ia{sv})\"/><arg type=\"a(ias)\"/></signal>\n"
      "<signal name=\"LayoutUpdated\"><arg type=\"u\"/><arg type=\"i\"/></signal>\n"
      "<signal name=\"ItemActivationRequested\"><arg type=\"i\"/><arg type=\"u\"/></signal>\n");
}

QVariantMap menuProperties() {
  return {{QStringLiteral("Version"), 3U},
          {QStringLiteral("Status"), QStringLiteral("normal")},
          {QStringLiteral("TextDirection"), QStringLiteral("ltr")},
          {QStringLiteral("IconThemePath"), QStringList()}};
}

QVariant unknownIds(const QList<int>& ids) {
  QList<int> unknown;
  std::copy_if(ids.begin(), ids.end(), std::back_inserter(unknown), [](int id) { return !isItem(id); });
  return QVariant::fromValue(unknown);
}

// The ids and event names of EventGroup's argument, a(isvu): id, event name, data, timestamp.
QList<std::pair<int, QString>> parseEventGroup(const QVariant& argument) {
  QList<std::pair<int, QString>> events;
  const auto array = argument.value<QDBusArgument>();
  array.beginArray();
  while (!array.atEnd()) {
    int id = 0;
    QString event;
    QDBusVariant data;
    uint timestamp = 0;
    array.beginStructure();
    array >> id >> event >> data >> timestamp;
    array.endStructure();
    events.append({id, event});
  }
  array.endArray();
  return events;
}

}  // namespace

DBusMenu::DBusMenu(const QDBusConnection& bus, QObject* parent)
    : QObject(parent), object_(bus, itemMenuPath(), interface()) {
  registerNotifierTypes();
  connect(&object_, &BusObject::burstEnded, this, &DBusMenu::burstEnded);
  connect(this, &DBusMenu::clickReceived, this, &DBusMenu::emitClicked, Qt::QueuedConnection);
}

BusInterface DBusMenu::interface() {
  const auto event = [this](const QVariantList& arguments) -> Result {
    if (!handleEvent(arguments.at(0).toInt(), arguments.at(1).toString())) return std::nullopt;
    return QVariantList();
  };
  const auto eventGroup = [this](const QVariantList& arguments) -> Result {
    QList<int> unknown;
    for (const auto& [id, name] : parseEventGroup(arguments.at(0))) {
      if (!handleEvent(id, name)) unknown << id;
    }
    return QVariantList{QVariant::fromValue(unknown)};
  };
  const auto aboutToShow = [](const QVariantList& arguments) -> Result {
    if (!isItem(arguments.at(0).toInt())) return std::nullopt;
    return QVariantList{false};
  };
  const auto aboutToShowGroup = [](const QVariantList& arguments) -> Result {
    return QVariantList{QVariant::fromValue(QList<int>()),
                        unknownIds(qdbus_cast<QList<int>>(arguments.at(0)))};
  };
  return {QStringLiteral("com.canonical.dbusmenu"),
          {{QStringLiteral("GetLayout"), {QStringLiteral("iias"), getLayout}},
           {QStringLiteral("GetGroupProperties"), {QStringLiteral("aias"), getGroupProperties}},
           {QStringLiteral("GetProperty"), {QStringLiteral("is"), getProperty}},
           {QStringLiteral("Event"), {QStringLiteral("isvu"), event}},
           {QStringLiteral("EventGroup"), {QStringLiteral("a(isvu)"), eventGroup}},
           {QStringLiteral("AboutToShow"), {QStringLiteral("i"), aboutToShow}},
           {QStringLiteral("AboutToShowGroup"), {QStringLiteral("ai"), aboutToShowGroup}}},
          menuProperties,
          introspection()};
}

// Returns false for an unknown id.
bool DBusMenu::handleEvent(int id, const QString& event) {
  if (!isItem(id)) return false;
  // Any process on the bus can send 100,000 clicks in one EventGroup message.
  const bool isRepeated = id == lastClicked_ && !nextClick_.hasExpired();
  if (event == u"clicked" && id != rootItem && !isRepeated) {
    lastClicked_ = id;
    nextClick_.setRemainingTime(clickInterval);
    Q_EMIT clickReceived(id, QPrivateSignal());
  }
  return true;
}

void DBusMenu::emitClicked(int id) {
  if (id == openItem) {
    Q_EMIT openClicked();
  } else {
    Q_EMIT quitClicked();
  }
}

}  // namespace tarn
