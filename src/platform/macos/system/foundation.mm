// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Each function creates an autorelease pool, because it may run on a thread that has none.

#include "platform/macos/system/foundation.hpp"

#include <Foundation/Foundation.h>

#include <utility>

namespace tarn::macos {

namespace {

std::string standardText(NSString* text) {
  const char* const utf8 = text.UTF8String;
  return utf8 == nullptr ? std::string() : std::string(utf8);
}

// Values of dictionaries may be of any class.
NSString* stringOrNil(id object) {
  return [object isKindOfClass:NSString.class] ? object : nil;
}

NSNumber* numberOrNil(id object) {
  return [object isKindOfClass:NSNumber.class] ? object : nil;
}

std::optional<std::string> optionalText(id object) {
  NSString* const text = stringOrNil(object);
  if (text == nil) return std::nullopt;
  return standardText(text);
}

std::optional<std::int64_t> optionalInteger(id object) {
  NSNumber* const number = numberOrNil(object);
  if (number == nil) return std::nullopt;
  return number.longLongValue;
}

NSByteCountFormatter* makeByteCountFormatter() {
  NSByteCountFormatter* const formatter = [[NSByteCountFormatter alloc] init];
  formatter.countStyle = NSByteCountFormatterCountStyleMemory;
  formatter.allowedUnits = NSByteCountFormatterUseBytes | NSByteCountFormatterUseKB |
                           NSByteCountFormatterUseMB | NSByteCountFormatterUseGB;
  formatter.zeroPadsFractionDigits = NO;
  formatter.allowsNonnumericFormatting = NO;
  return formatter;
}

NSNumberFormatter* makePercentFormatter() {
  NSNumberFormatter* const formatter = [[NSNumberFormatter alloc] init];
  formatter.numberStyle = NSNumberFormatterPercentStyle;
  formatter.maximumFractionDigits = 0;
  return formatter;
}

}  // namespace

void withAutoreleasePool(const std::function<void()>& task) {
  @autoreleasepool {
    task();
  }
}

std::string byteCountText(std::int64_t byteCount) {
  @autoreleasepool {
    static NSByteCountFormatter* const formatter = makeByteCountFormatter();
    return standardText([formatter stringFromByteCount:byteCount]);
  }
}

std::optional<std::string> percentText(double fraction) {
  @autoreleasepool {
    static NSNumberFormatter* const formatter = makePercentFormatter();
    return optionalText([formatter stringFromNumber:[NSNumber numberWithDouble:fraction]]);
  }
}

std::map<std::string, std::string, std::less<>> bundleInformation(const std::string& path) {
  @autoreleasepool {
    std::map<std::string, std::string, std::less<>> information;
    NSString* const location = [NSString stringWithUTF8String:path.c_str()];
    if (location == nil) return information;  // NSBundle raises an exception for nil
    NSDictionary<NSString*, id>* const entries = [[NSBundle alloc] initWithPath:location].infoDictionary;
    for (NSString* key in entries) {
      if (auto text = optionalText(entries[key])) information.emplace(standardText(key), std::move(*text));
    }
    return information;
  }
}

std::optional<std::string> shortVersion() {
  @autoreleasepool {
    return optionalText([NSBundle.mainBundle objectForInfoDictionaryKey:@"CFBundleShortVersionString"]);
  }
}

std::optional<VolumeValues> rootVolumeValues() {
  @autoreleasepool {
    // NSURL caches resource values, so each call creates a new one.
    NSURL* const root = [NSURL fileURLWithPath:@"/"];
    NSArray<NSURLResourceKey>* const keys = @[
      NSURLVolumeTotalCapacityKey, NSURLVolumeAvailableCapacityForImportantUsageKey, NSURLVolumeNameKey
    ];
    NSDictionary<NSURLResourceKey, id>* const values = [root resourceValuesForKeys:keys error:nil];
    if (values == nil) return std::nullopt;
    return VolumeValues{
        .totalCapacity = optionalInteger(values[NSURLVolumeTotalCapacityKey]),
        .availableCapacityForImportantUsage =
            optionalInteger(values[NSURLVolumeAvailableCapacityForImportantUsageKey]),
        .name = optionalText(values[NSURLVolumeNameKey]),
    };
  }
}

double systemUptime() {
  @autoreleasepool {
    return NSProcessInfo.processInfo.systemUptime;
  }
}

std::int64_t thermalState() {
  @autoreleasepool {
    return NSProcessInfo.processInfo.thermalState;
  }
}

std::int64_t activeProcessorCount() {
  @autoreleasepool {
    return static_cast<std::int64_t>(NSProcessInfo.processInfo.activeProcessorCount);
  }
}

}  // namespace tarn::macos
