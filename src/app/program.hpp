// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <memory>
#include <optional>

namespace tarn {

/// This program's version, as its package states it; nothing where it states none. Each platform folder
/// defines these. Main thread.
std::optional<QString> platformShortVersion();

/// Makes the memory allocator sparing, where it can be told to be: before anything else, while there is one
/// thread.
void platformSpareMemory();

/// Gives back to the system what the allocator keeps for later: after much was freed that is not soon wanted.
void platformReturnMemory();

/// Calls `switched` each time the user goes to another workspace, until the watch is destroyed. Null where
/// nothing tells, or where popovers close by themselves then.
std::unique_ptr<QObject> platformWorkspaceWatch(std::function<void()> switched);

/// Has the program end, as by `platformTerminate`, when the system or the user asks it to by a signal, until
/// the answer is destroyed. Null where signals have no such meaning.
std::unique_ptr<QObject> platformEndOnSignals();

/// Ends the program, as programs end on the platform.
void platformTerminate();

}  // namespace tarn
