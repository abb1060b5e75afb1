// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <map>
#include <string>
#include <variant>
#include <vector>

#include "platform/macos/readers/framework_objects.hpp"

namespace tarn::macos {

/// A fake Core Foundation object. The test owns the items; they outlive it.
struct FakeObject {
  using Array = std::vector<const FakeObject*>;
  using Dictionary = std::map<std::string, const FakeObject*, std::less<>>;

  std::variant<std::monostate, bool, std::int64_t, double, std::string, Array, Dictionary> value;
};

/// A fake of Core Foundation that counts objects. Only one may exist at a time.
struct FakeFrameworks {
  FakeFrameworks() { current = this; }
  FakeFrameworks(const FakeFrameworks&) = delete;
  FakeFrameworks& operator=(const FakeFrameworks&) = delete;
  ~FakeFrameworks() { current = nullptr; }

  int created = 0;  ///< objects that must be released
  int released = 0;
  std::vector<std::pair<std::string, std::int64_t>> lastDictionary;

  /// A copy of an object, which must be released.
  ObjectRef ownedCopy(FakeObject object) {
    ++created;
    return new FakeObject(std::move(object));
  }

  static const FakeObject* fakeOf(ObjectRef object) { return static_cast<const FakeObject*>(object); }

  static ObjectFunctions functions() {
    return {.defaultAllocator = nullptr,
            .createDictionary = createDictionary,
            .kindOf = kindOf,
            .booleanValue = valueOf<bool>,
            .integerValue = valueOf<std::int64_t>,
            .realValue = valueOf<double>,
            .stringValue = valueOf<std::string>,
            .arrayCount =
                [](ObjectRef array) {
                  return static_cast<std::int64_t>(valueOf<FakeObject::Array>(array).size());
                },
            .arrayItem = [](ObjectRef array, std::int64_t index) -> ObjectRef {
              return std::get<FakeObject::Array>(fakeOf(array)->value).at(static_cast<std::size_t>(index));
            },
            .dictionaryItem = [](ObjectRef dictionary, const char* key) -> ObjectRef {
              const auto& entries = std::get<FakeObject::Dictionary>(fakeOf(dictionary)->value);
              const auto entry = entries.find(key);
              return entry == entries.end() ? nullptr : entry->second;
            },
            .release = release};
  }

 private:
  inline static FakeFrameworks* current = nullptr;

  template <typename Value>
  static Value valueOf(ObjectRef object) {
    return std::get<Value>(fakeOf(object)->value);
  }

  static ObjectRef createDictionary(std::span<const IntegerEntry> entries) {
    current->lastDictionary.clear();
    for (const IntegerEntry& entry : entries) current->lastDictionary.emplace_back(entry.key, entry.value);
    return current->ownedCopy({FakeObject::Dictionary{}});
  }

  static ObjectKind kindOf(ObjectRef object) {
    constexpr ObjectKind kinds[] = {ObjectKind::other,     ObjectKind::boolean, ObjectKind::integer,
                                    ObjectKind::real,      ObjectKind::string,  ObjectKind::array,
                                    ObjectKind::dictionary};
    return kinds[fakeOf(object)->value.index()];
  }

  static void release(ObjectRef object) {
    ++current->released;
    delete fakeOf(object);
  }
};

}  // namespace tarn::macos
