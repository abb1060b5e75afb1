// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>
#include <QVariant>
#include <QVariantMap>

#include "platform/linux/status_notifier/host_kind.hpp"
#include "ui/menu_bar/menu_bar_label.hpp"

namespace tarn {

/// Where the item's menu lives on the bus.
QString notifierMenuPath();

/// The pictures of `label` in every size that a panel of `kind` may want, as they travel.
QVariant notifierPictures(const MenuBarLabel& label, HostKind kind);

/// What an item that shows `label` tells a panel of `kind`: property names and their values as they travel,
/// the pictures among them. A property that this panel must not see is not in it.
QVariantMap notifierProperties(const MenuBarLabel& label, HostKind kind, const QVariant& pictures);

/// The item in one line, with the label's text when there is one.
QString notifierTitle(const MenuBarLabel& label);

/// The lines under the verdict in the tooltip, plain text: the figures, then the label's text. May be blank.
QString notifierToolTipText(const MenuBarLabel& label);

}  // namespace tarn
