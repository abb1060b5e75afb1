// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Core Foundation objects and functions in plain types, so that the readers compile and are tested on every
// system.

#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace tarn::macos {

/// A CFTypeRef; may be null. The type does not define who owns the object.
using ObjectRef = const void*;

/// An object that its owner releases.
using OwnedObject = std::unique_ptr<const void, void (*)(ObjectRef)>;

/// A key of a dictionary and its integer value.
struct IntegerEntry {
  const char* key;
  std::int64_t value;
};

/// The types that the readers distinguish.
enum class ObjectKind { boolean, integer, real, string, array, dictionary, other };

/// Core Foundation's functions. No argument may be null, except where stated.
struct ObjectFunctions {
  ObjectRef defaultAllocator;                                            ///< may be null
  ObjectRef (*createDictionary)(std::span<const IntegerEntry> entries);  ///< the caller owns the result
  ObjectKind (*kindOf)(ObjectRef object);
  bool (*booleanValue)(ObjectRef boolean);
  std::int64_t (*integerValue)(ObjectRef integer);
  double (*realValue)(ObjectRef real);
  std::string (*stringValue)(ObjectRef string);  ///< UTF-8
  std::int64_t (*arrayCount)(ObjectRef array);
  ObjectRef (*arrayItem)(ObjectRef array, std::int64_t index);  ///< owned by the array
  /// The dictionary owns the result; null when the key is absent.
  ObjectRef (*dictionaryItem)(ObjectRef dictionary, const char* key);
  void (*release)(ObjectRef object);

  OwnedObject owned(ObjectRef object) const { return {object, release}; }
  bool isArray(ObjectRef object) const { return object != nullptr && kindOf(object) == ObjectKind::array; }
  bool isDictionary(ObjectRef object) const {
    return object != nullptr && kindOf(object) == ObjectKind::dictionary;
  }
};

}  // namespace tarn::macos
