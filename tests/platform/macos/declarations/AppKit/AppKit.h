// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// Declarations of the parts of AppKit that Tarn uses, written from the public documentation:
// enough to check types on a system without the framework.

#pragma once

#include <Foundation/Foundation.h>
#include <sys/types.h>

#pragma clang assume_nonnull begin

@interface NSColor : NSObject
@property(class, strong, readonly) NSColor* systemGreenColor;
@property(class, strong, readonly) NSColor* systemOrangeColor;
@property(class, strong, readonly) NSColor* systemRedColor;
@end

typedef CGFloat NSFontWeight;
extern "C" const NSFontWeight NSFontWeightSemibold;

typedef NSString* NSColorSpaceName;
extern "C" const NSColorSpaceName NSDeviceRGBColorSpace;

typedef enum NSCompositingOperation : NSUInteger {
  NSCompositingOperationCopy = 1,
} NSCompositingOperation;

@interface NSImageSymbolConfiguration : NSObject
+ (instancetype)configurationWithPointSize:(CGFloat)pointSize weight:(NSFontWeight)weight;
+ (instancetype)configurationWithPaletteColors:(NSArray<NSColor*>*)paletteColors;
- (instancetype)configurationByApplyingConfiguration:(NSImageSymbolConfiguration*)configuration;
@end

@interface NSImage : NSObject
@property NSSize size;
@property(nullable, copy) NSString* accessibilityDescription;
+ (nullable instancetype)imageWithSystemSymbolName:(NSString*)name
                          accessibilityDescription:(nullable NSString*)description;
+ (instancetype)imageWithSize:(NSSize)size
                      flipped:(BOOL)drawingHandlerShouldBeCalledWithFlippedContext
               drawingHandler:(BOOL (^)(NSRect dstRect))drawingHandler;
- (nullable NSImage*)imageWithSymbolConfiguration:(NSImageSymbolConfiguration*)configuration;
// The accessors of the property `template`, whose name is a keyword of C++.
- (BOOL)isTemplate;
- (void)setTemplate:(BOOL)isTemplate;
- (void)drawInRect:(NSRect)rect;
- (void)drawInRect:(NSRect)rect
          fromRect:(NSRect)fromRect
         operation:(NSCompositingOperation)op
          fraction:(CGFloat)delta;
@end

@interface NSBitmapImageRep : NSObject
@property(nullable, readonly) unsigned char* bitmapData __attribute__((objc_returns_inner_pointer));
- (nullable instancetype)initWithBitmapDataPlanes:(unsigned char* _Nullable* _Nullable)planes
                                       pixelsWide:(NSInteger)width
                                       pixelsHigh:(NSInteger)height
                                    bitsPerSample:(NSInteger)bps
                                  samplesPerPixel:(NSInteger)spp
                                         hasAlpha:(BOOL)alpha
                                         isPlanar:(BOOL)isPlanar
                                   colorSpaceName:(NSColorSpaceName)colorSpaceName
                                      bytesPerRow:(NSInteger)rBytes
                                     bitsPerPixel:(NSInteger)pBits;
@end

@interface NSGraphicsContext : NSObject
@property(class, nullable, strong) NSGraphicsContext* currentContext;
+ (nullable NSGraphicsContext*)graphicsContextWithBitmapImageRep:(NSBitmapImageRep*)bitmapRep;
+ (void)saveGraphicsState;
+ (void)restoreGraphicsState;
@end

@interface NSAffineTransform (NSAppKitAdditions)
- (void)concat;
@end

typedef enum NSUserInterfaceLayoutDirection : NSInteger {
  NSUserInterfaceLayoutDirectionLeftToRight = 0,
  NSUserInterfaceLayoutDirectionRightToLeft = 1,
} NSUserInterfaceLayoutDirection;

@interface NSScreen : NSObject
@property(class, readonly, copy) NSArray<NSScreen*>* screens;
@property(readonly) NSRect frame;
@end

@interface NSResponder : NSObject
@end

@interface NSWindow : NSResponder
- (NSRect)convertRectToScreen:(NSRect)rect;
@end

@interface NSView : NSResponder
@property NSRect bounds;
@property(nullable, readonly, assign) NSWindow* window;
@property(nullable, copy) NSString* toolTip;
@property NSUserInterfaceLayoutDirection userInterfaceLayoutDirection;
@property(nullable, copy) NSString* accessibilityLabel;
- (NSRect)convertRect:(NSRect)rect toView:(nullable NSView*)view;
@end

@interface NSControl : NSView
@property(nullable, weak) id target;
@property(nullable) SEL action;
@end

typedef enum NSCellImagePosition : NSUInteger {
  NSImageOnly = 1,
  NSImageLeading = 7,
} NSCellImagePosition;

@interface NSButton : NSControl
@property(copy) NSString* title;
@property(nullable, strong) NSImage* image;
@property NSCellImagePosition imagePosition;
@property BOOL imageHugsTitle;
@end

@interface NSStatusBarButton : NSButton
@end

@interface NSStatusItem : NSObject
@property(nullable, readonly, strong) NSStatusBarButton* button;
@end

static const CGFloat NSVariableStatusItemLength = -1.0;

@interface NSStatusBar : NSObject
@property(class, readonly, strong) NSStatusBar* systemStatusBar;
- (NSStatusItem*)statusItemWithLength:(CGFloat)length;
- (void)removeStatusItem:(NSStatusItem*)item;
@end

@interface NSRunningApplication : NSObject
@property(nullable, readonly, copy) NSURL* bundleURL;
@property(readonly) pid_t processIdentifier;
@end

@interface NSWorkspace : NSObject
@property(class, readonly, strong) NSWorkspace* sharedWorkspace;
@property(nullable, readonly, strong) NSRunningApplication* frontmostApplication;
- (NSImage*)iconForFile:(NSString*)fullPath;
@end

@interface NSApplication : NSResponder
@property(class, readonly, strong) __kindof NSApplication* sharedApplication;
- (void)activateIgnoringOtherApps:(BOOL)flag;
- (void)terminate:(nullable id)sender;
@end

#pragma clang assume_nonnull end
