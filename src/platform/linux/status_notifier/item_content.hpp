// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// What panels show for a label: icons, title, tooltip text, and all properties of the item.

#pragma once

#include <QImage>
#include <QString>
#include <QVariant>
#include <QVariantMap>
#include <array>

#include "platform/linux/status_notifier/watcher_registration.hpp"
#include "ui/menu_bar/menu_bar_label.hpp"

namespace tarn {

/// The icon heights in pixels that panels use: from small panels at normal density to large ones at double
/// density. A panel that finds its own height does not scale.
inline constexpr std::array panelIconSizes = {16, 22, 24, 32, 48, 64};

/// The label's circle on a transparent square of `pixels`; wholly transparent for an unknown symbol name.
QImage circleIcon(const MenuBarLabel& label, int pixels);

/// The circle and the label's text beside it, `pixels` high and as wide as necessary. Without text it is the
/// circle only.
QImage labelledIcon(const MenuBarLabel& label, int pixels);

/// The item's title: "Tarn", and the label's text if there is one.
QString itemTitle(const MenuBarLabel& label);

/// The lines below the status sentence in the tooltip, as plain text: the memory figures, then the label's
/// text. May be empty.
QString itemToolTipText(const MenuBarLabel& label);

/// The value of the property IconPixmap: IconPixmaps in each of panelIconSizes.
QVariant itemIconPixmaps(const MenuBarLabel& label, HostKind kind);

/// All properties of org.kde.StatusNotifierItem for a panel of `kind`. Drawing takes longer than everything
/// else, so that `iconPixmaps` is passed in and can be reused.
QVariantMap itemProperties(const MenuBarLabel& label, HostKind kind, const QVariant& iconPixmaps);

/// The object path of the item's menu.
QString itemMenuPath();

}  // namespace tarn
