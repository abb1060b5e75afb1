// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Objects of the system's frameworks, as far as readers need to know them.

#pragma once

#include <cstdint>
#include <memory>
#include <span>

namespace tarn::macos {

/// A reference to an object of a framework; null for none. Says nothing of who owns it.
using ObjectRef = const void*;

/// An object that is released with its owner.
using OwnedObject = std::unique_ptr<const void, void (*)(ObjectRef)>;

/// A dictionary's key and the whole number under it.
struct IntegerEntry {
  const char* key;
  std::int64_t value;
};

/// The frameworks' functions on objects.
struct ObjectFunctions {
  ObjectRef defaultAllocator;
  ObjectRef (*createDictionary)(std::span<const IntegerEntry> entries);  ///< the caller owns the result
  bool (*isArray)(ObjectRef object);
  std::int64_t (*arrayCount)(ObjectRef array);
  ObjectRef (*arrayItem)(ObjectRef array, std::int64_t index);  ///< owned by the array
  void (*release)(ObjectRef object);                            ///< not for null

  OwnedObject owned(ObjectRef object) const { return {object, release}; }
};

}  // namespace tarn::macos
