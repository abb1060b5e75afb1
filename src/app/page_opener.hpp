// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>
#include <functional>

namespace tarn {

/// Has the user's browser show a web page, without waiting until it does. Main thread. Says nothing when
/// there is no browser.
using PageOpener = std::function<void(const QString& page)>;

/// The running desktop's way; each platform folder defines it.
PageOpener platformPageOpener();

}  // namespace tarn
