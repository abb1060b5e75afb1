// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/status_notifier/dbus_menu.hpp"

#include <QDBusVariant>
#include <QStringList>
#include <algorithm>
#include <utility>

#include "platform/linux/status_notifier/notifier_properties.hpp"
#include "platform/linux/status_notifier/notifier_types.hpp"

namespace tarn {
namespace {

using Answer = std::optional<QVariantList>;

constexpr int rootEntry = 0;
constexpr int openEntry = 1;
constexpr int quitEntry = 2;
constexpr int entries[] = {rootEntry, openEntry, quitEntry};
constexpr uint revision = 1;

bool isEntry(int id) {
  return std::find(std::begin(entries), std::end(entries), id) != std::end(entries);
}

// Of the properties of entry `id` those that are asked for; all when none is named.
QVariantMap entryProperties(int id, const QStringList& names) {
  QVariantMap properties;
  if (id == rootEntry) {
    properties.insert(QStringLiteral("children-display"), QStringLiteral("submenu"));
  } else {
    properties.insert(QStringLiteral("label"),
                      id == openEntry ? QStringLiteral("Open") : QStringLiteral("Quit"));
    properties.insert(QStringLiteral("enabled"), true);
    properties.insert(QStringLiteral("visible"), true);
  }
  if (names.isEmpty()) return properties;
  QVariantMap asked;
  for (const QString& name : names) {
    if (properties.contains(name)) asked.insert(name, properties.value(name));
  }
  return asked;
}

Answer layout(const QVariantList& arguments) {
  const int id = arguments.at(0).toInt();
  const int depth = arguments.at(1).toInt();
  const QStringList names = arguments.at(2).toStringList();
  if (!isEntry(id)) return std::nullopt;
  NotifierMenuLayout result{id, entryProperties(id, names), {}};
  if (id == rootEntry && depth != 0) {
    result.children = {{openEntry, entryProperties(openEntry, names), {}},
                       {quitEntry, entryProperties(quitEntry, names), {}}};
  }
  return QVariantList{revision, QVariant::fromValue(result)};
}

Answer groupProperties(const QVariantList& arguments) {
  const auto ids = qdbus_cast<QList<int>>(arguments.at(0));
  const QStringList names = arguments.at(1).toStringList();
  QList<NotifierMenuProperties> result;
  for (const int id : entries) {
    if (ids.isEmpty() || ids.contains(id)) result << NotifierMenuProperties{id, entryProperties(id, names)};
  }
  return QVariantList{QVariant::fromValue(result)};
}

Answer oneProperty(const QVariantList& arguments) {
  const int id = arguments.at(0).toInt();
  const QString name = arguments.at(1).toString();
  const QVariant value = isEntry(id) ? entryProperties(id, {}).value(name) : QVariant();
  if (!value.isValid()) return std::nullopt;
  return QVariantList{QVariant::fromValue(QDBusVariant(value))};
}

QString methodsAndSignals() {
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

QVariant unknownOf(const QList<int>& ids) {
  QList<int> unknown;
  std::copy_if(ids.begin(), ids.end(), std::back_inserter(unknown), [](int id) { return !isEntry(id); });
  return QVariant::fromValue(unknown);
}

// The entries and names of the events of a group, in order.
QList<std::pair<int, QString>> groupedEvents(const QVariant& argument) {
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

NotifierMenu::NotifierMenu(const QDBusConnection& bus, QObject* parent)
    : QObject(parent), object_((registerNotifierTypes(), bus), notifierMenuPath(), interface()) {
  connect(this, &NotifierMenu::clicked, this, &NotifierMenu::choose, Qt::QueuedConnection);
}

BusInterface NotifierMenu::interface() {
  const auto event = [this](const QVariantList& arguments) -> Answer {
    if (!handleEvent(arguments.at(0).toInt(), arguments.at(1).toString())) return std::nullopt;
    return QVariantList();
  };
  const auto eventGroup = [this](const QVariantList& arguments) -> Answer {
    QList<int> unknown;
    for (const auto& [id, name] : groupedEvents(arguments.at(0))) {
      if (!handleEvent(id, name)) unknown << id;
    }
    return QVariantList{QVariant::fromValue(unknown)};
  };
  const auto aboutToShow = [](const QVariantList& arguments) -> Answer {
    if (!isEntry(arguments.at(0).toInt())) return std::nullopt;
    return QVariantList{false};
  };
  const auto aboutToShowGroup = [](const QVariantList& arguments) -> Answer {
    return QVariantList{QVariant::fromValue(QList<int>()),
                        unknownOf(qdbus_cast<QList<int>>(arguments.at(0)))};
  };
  return {QStringLiteral("com.canonical.dbusmenu"),
          {{QStringLiteral("GetLayout"), {QStringLiteral("iias"), layout}},
           {QStringLiteral("GetGroupProperties"), {QStringLiteral("aias"), groupProperties}},
           {QStringLiteral("GetProperty"), {QStringLiteral("is"), oneProperty}},
           {QStringLiteral("Event"), {QStringLiteral("isvu"), event}},
           {QStringLiteral("EventGroup"), {QStringLiteral("a(isvu)"), eventGroup}},
           {QStringLiteral("AboutToShow"), {QStringLiteral("i"), aboutToShow}},
           {QStringLiteral("AboutToShowGroup"), {QStringLiteral("ai"), aboutToShowGroup}}},
          menuProperties,
          methodsAndSignals()};
}

bool NotifierMenu::handleEvent(int id, const QString& event) {
  if (!isEntry(id)) return false;
  // A hundred thousand choices fit into one message, and anybody on the bus may send it.
  const bool again = id == lastChoice_ && !nextChoice_.hasExpired();
  if (event == u"clicked" && id != rootEntry && !again) {
    lastChoice_ = id;
    nextChoice_.setRemainingTime(choiceInterval);
    Q_EMIT clicked(id, QPrivateSignal());
  }
  return true;
}

void NotifierMenu::choose(int id) {
  if (id == openEntry) {
    Q_EMIT openChosen();
  } else {
    Q_EMIT quitChosen();
  }
}

}  // namespace tarn
