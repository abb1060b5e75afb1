// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QDBusConnection>
#include <QDBusVirtualObject>
#include <QString>
#include <utility>

namespace tarn::test {

/// A service on the bus with one object. The destructor removes it from the bus. Derived classes implement
/// handleMessage().
class FakeService : public QDBusVirtualObject {
 public:
  FakeService(QDBusConnection connection, QString name, QString path)
      : connection_(std::move(connection)), name_(std::move(name)), path_(std::move(path)) {
    connection_.registerVirtualObject(path_, this);
    connection_.registerService(name_);
  }

  ~FakeService() override {
    connection_.unregisterService(name_);
    connection_.unregisterObject(path_);
  }
  Q_DISABLE_COPY_MOVE(FakeService)

  QString introspect(const QString& /*path*/) const override { return {}; }

 protected:
  const QDBusConnection& connection() const { return connection_; }

 private:
  QDBusConnection connection_;
  QString name_;
  QString path_;
};

}  // namespace tarn::test
