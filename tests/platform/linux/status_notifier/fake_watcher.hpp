// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QDBusConnection>
#include <QDBusVirtualObject>
#include <QStringList>
#include <QVariant>

namespace tarn::test {

/// How a watcher treats those who talk to it.
enum class Manners { proper, refusing, refusingItems, talkingNonsense, silent };

/// A panels' watcher on the bus, from construction to destruction.
class FakeWatcher final : public QDBusVirtualObject {
  Q_OBJECT

 public:
  explicit FakeWatcher(QDBusConnection connection, bool hasPanel = true, Manners manners = Manners::proper);
  ~FakeWatcher() override;
  Q_DISABLE_COPY_MOVE(FakeWatcher)

  /// A panel comes or goes, and everybody is told.
  void setHasPanel(bool hasPanel);

  /// Sends a signal that a watcher may send.
  void sendSignal(const QString& name, const QVariantList& arguments = {});

  /// What was registered, in order.
  const QStringList& items() const { return items_; }

  /// How often somebody asked whether there is a panel.
  int questions() const { return questions_; }

  QString introspect(const QString& path) const override;
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

 private:
  QDBusConnection connection_;
  bool hasPanel_;
  Manners manners_;
  QStringList items_;
  int questions_ = 0;
};

}  // namespace tarn::test
