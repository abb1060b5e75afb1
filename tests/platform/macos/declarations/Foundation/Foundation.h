// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Declarations of the parts of Foundation that Tarn uses, written from the public documentation:
// enough to check types on a system without the framework.

#pragma once

#include <MacTypes.h>
#include <objc/NSObject.h>

#pragma clang assume_nonnull begin

@class NSArray<ObjectType>, NSDictionary<KeyType, ObjectType>, NSError, NSString;

typedef double CGFloat;
typedef double NSTimeInterval;

typedef struct CGPoint {
  CGFloat x;
  CGFloat y;
} NSPoint;

typedef struct CGSize {
  CGFloat width;
  CGFloat height;
} NSSize;

typedef struct CGRect {
  NSPoint origin;
  NSSize size;
} NSRect;

extern "C" const NSRect NSZeroRect;

static inline NSSize NSMakeSize(CGFloat w, CGFloat h) {
  return {w, h};
}
static inline NSRect NSMakeRect(CGFloat x, CGFloat y, CGFloat w, CGFloat h) {
  return {{x, y}, {w, h}};
}
static inline CGFloat NSMinY(NSRect rect) {
  return rect.origin.y;
}
static inline CGFloat NSMaxY(NSRect rect) {
  return rect.origin.y + rect.size.height;
}
static inline CGFloat NSMidX(NSRect rect) {
  return rect.origin.x + rect.size.width * 0.5;
}

typedef struct {
  unsigned long state;
  id __unsafe_unretained _Nullable* _Nullable itemsPtr;
  unsigned long* _Nullable mutationsPtr;
  unsigned long extra[5];
} NSFastEnumerationState;

@protocol NSFastEnumeration
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id __unsafe_unretained _Nullable[_Nonnull])buffer
                                    count:(NSUInteger)len;
@end

@interface NSString : NSObject
@property(nullable, readonly) const char* UTF8String __attribute__((objc_returns_inner_pointer));
+ (nullable instancetype)stringWithUTF8String:(const char*)nullTerminatedCString;
@end

@interface NSNumber : NSObject
@property(readonly) long long longLongValue;
+ (NSNumber*)numberWithDouble:(double)value;
@end

@interface NSArray<__covariant ObjectType> : NSObject
@property(nullable, nonatomic, readonly) ObjectType firstObject;
+ (instancetype)arrayWithObjects:(const ObjectType _Nonnull[_Nonnull])objects count:(NSUInteger)cnt;
@end

@interface NSDictionary<__covariant KeyType, __covariant ObjectType> : NSObject <NSFastEnumeration>
- (nullable ObjectType)objectForKeyedSubscript:(KeyType)key;
@end

@interface NSFormatter : NSObject
@end

typedef NSUInteger NSByteCountFormatterUnits;
enum : NSByteCountFormatterUnits {
  NSByteCountFormatterUseBytes = 1UL << 0,
  NSByteCountFormatterUseKB = 1UL << 1,
  NSByteCountFormatterUseMB = 1UL << 2,
  NSByteCountFormatterUseGB = 1UL << 3,
};

typedef enum NSByteCountFormatterCountStyle : NSInteger {
  NSByteCountFormatterCountStyleMemory = 1,
} NSByteCountFormatterCountStyle;

@interface NSByteCountFormatter : NSFormatter
@property NSByteCountFormatterUnits allowedUnits;
@property NSByteCountFormatterCountStyle countStyle;
@property BOOL allowsNonnumericFormatting;
@property BOOL zeroPadsFractionDigits;
- (NSString*)stringFromByteCount:(long long)byteCount;
@end

typedef enum NSNumberFormatterStyle : NSUInteger {
  NSNumberFormatterPercentStyle = 3,
} NSNumberFormatterStyle;

@interface NSNumberFormatter : NSFormatter
@property NSNumberFormatterStyle numberStyle;
@property NSUInteger maximumFractionDigits;
- (nullable NSString*)stringFromNumber:(NSNumber*)number;
@end

@interface NSBundle : NSObject
@property(class, readonly, strong) NSBundle* mainBundle;
@property(nullable, readonly, copy) NSDictionary<NSString*, id>* infoDictionary;
- (nullable instancetype)initWithPath:(NSString*)path;
- (nullable id)objectForInfoDictionaryKey:(NSString*)key;
@end

typedef NSString* NSURLResourceKey;
extern "C" const NSURLResourceKey NSURLVolumeNameKey;
extern "C" const NSURLResourceKey NSURLVolumeTotalCapacityKey;
extern "C" const NSURLResourceKey NSURLVolumeAvailableCapacityForImportantUsageKey;

@interface NSURL : NSObject
@property(nullable, readonly, copy) NSString* path;
+ (NSURL*)fileURLWithPath:(NSString*)path;
- (nullable NSDictionary<NSURLResourceKey, id>*)
    resourceValuesForKeys:(NSArray<NSURLResourceKey>*)keys
                    error:(NSError* _Nullable __autoreleasing* _Nullable)error;
@end

typedef enum NSProcessInfoThermalState : NSInteger {
  NSProcessInfoThermalStateNominal,
  NSProcessInfoThermalStateFair,
  NSProcessInfoThermalStateSerious,
  NSProcessInfoThermalStateCritical,
} NSProcessInfoThermalState;

@interface NSProcessInfo : NSObject
@property(class, readonly, strong) NSProcessInfo* processInfo;
@property(readonly) NSTimeInterval systemUptime;
@property(readonly) NSUInteger activeProcessorCount;
@property(readonly) NSProcessInfoThermalState thermalState;
@end

@interface NSAffineTransform : NSObject
+ (NSAffineTransform*)transform;
- (void)scaleBy:(CGFloat)scale;
@end

typedef FourCharCode AEEventClass;
typedef FourCharCode AEEventID;
enum : AEEventClass { kCoreEventClass = 'aevt' };
enum : AEEventID { kAEReopenApplication = 'rapp' };

@class NSAppleEventDescriptor;

@interface NSAppleEventManager : NSObject
+ (NSAppleEventManager*)sharedAppleEventManager;
- (void)setEventHandler:(id)handler
            andSelector:(SEL)handleEventSelector
          forEventClass:(AEEventClass)eventClass
             andEventID:(AEEventID)eventID;
- (void)removeEventHandlerForEventClass:(AEEventClass)eventClass andEventID:(AEEventID)eventID;
@end

#pragma clang assume_nonnull end
