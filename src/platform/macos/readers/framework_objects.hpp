// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Objects of the system's frameworks, as far as readers need to know them.

#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

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

/// What an object is, as far as readers tell kinds apart.
enum class ObjectKind { boolean, integer, real, string, array, dictionary, other };

/// The frameworks' functions on objects. None takes null, but for `release`, which no one calls with it.
struct ObjectFunctions {
  ObjectRef defaultAllocator;                                            ///< null may stand for it
  ObjectRef (*createDictionary)(std::span<const IntegerEntry> entries);  ///< the caller owns the result
  ObjectKind (*kindOf)(ObjectRef object);
  bool (*booleanValue)(ObjectRef boolean);
  std::int64_t (*integerValue)(ObjectRef integer);
  double (*realValue)(ObjectRef real);
  std::string (*stringValue)(ObjectRef string);  ///< UTF-8
  std::int64_t (*arrayCount)(ObjectRef array);
  ObjectRef (*arrayItem)(ObjectRef array, std::int64_t index);         ///< owned by the array
  ObjectRef (*dictionaryItem)(ObjectRef dictionary, const char* key);  ///< owned by it; null without one
  void (*release)(ObjectRef object);

  OwnedObject owned(ObjectRef object) const { return {object, release}; }
  bool isArray(ObjectRef object) const { return object != nullptr && kindOf(object) == ObjectKind::array; }
  bool isDictionary(ObjectRef object) const {
    return object != nullptr && kindOf(object) == ObjectKind::dictionary;
  }
};

}  // namespace tarn::macos
