// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/macos/desktop/workspace.hpp"

#include <AppKit/AppKit.h>

#include <cstddef>
#include <utility>

/// Whom the system tells that the program was opened again.
@interface TarnReopeningHandler : NSObject
- (instancetype)initWithReopened:(std::function<void()>)reopened;
- (void)handleEvent:(NSAppleEventDescriptor*)event withReplyEvent:(NSAppleEventDescriptor*)reply;
@end

@implementation TarnReopeningHandler {
  std::function<void()> _reopened;
}

- (instancetype)initWithReopened:(std::function<void()>)reopened {
  self = [super init];
  if (self != nil) _reopened = std::move(reopened);
  return self;
}

- (void)handleEvent:(NSAppleEventDescriptor*)event withReplyEvent:(NSAppleEventDescriptor*)reply {
  _reopened();
}

@end

namespace tarn::macos {

namespace {

constexpr int iconSide = 32;  // points
constexpr int bytesPerPixel = 4;

NSBitmapImageRep* makeBitmap(NSInteger side) {
  return [[NSBitmapImageRep alloc] initWithBitmapDataPlanes:nullptr
                                                 pixelsWide:side
                                                 pixelsHigh:side
                                              bitsPerSample:8
                                            samplesPerPixel:bytesPerPixel
                                                   hasAlpha:YES
                                                   isPlanar:NO
                                             colorSpaceName:NSDeviceRGBColorSpace
                                                bytesPerRow:side * bytesPerPixel
                                               bitsPerPixel:8 * bytesPerPixel];
}

void drawIcon(NSImage* icon, NSGraphicsContext* context, int scale) {
  [NSGraphicsContext saveGraphicsState];
  NSGraphicsContext.currentContext = context;
  NSAffineTransform* const pixels = [NSAffineTransform transform];
  [pixels scaleBy:scale];
  [pixels concat];
  // Copies, as nothing says that a new bitmap is clear.
  [icon drawInRect:NSMakeRect(0, 0, iconSide, iconSide)
          fromRect:NSZeroRect
         operation:NSCompositingOperationCopy
          fraction:1];
  [NSGraphicsContext restoreGraphicsState];
}

class ReopeningWatch {
 public:
  explicit ReopeningWatch(std::function<void()> reopened)
      : handler_([[TarnReopeningHandler alloc] initWithReopened:std::move(reopened)]) {
    [NSAppleEventManager.sharedAppleEventManager setEventHandler:handler_
                                                     andSelector:@selector(handleEvent:withReplyEvent:)
                                                   forEventClass:kCoreEventClass
                                                      andEventID:kAEReopenApplication];
  }

  ReopeningWatch(const ReopeningWatch&) = delete;
  ReopeningWatch& operator=(const ReopeningWatch&) = delete;

  ~ReopeningWatch() {
    [NSAppleEventManager.sharedAppleEventManager removeEventHandlerForEventClass:kCoreEventClass
                                                                      andEventID:kAEReopenApplication];
  }

 private:
  TarnReopeningHandler* handler_;  // the manager does not own it
};

}  // namespace

std::optional<RunningApplication> frontmostApplication() {
  NSRunningApplication* const application = NSWorkspace.sharedWorkspace.frontmostApplication;
  if (application == nil) return std::nullopt;
  RunningApplication running;
  if (const char* const path = application.bundleURL.path.UTF8String) running.bundlePath = path;
  running.processIdentifier = application.processIdentifier;
  return running;
}

Pixels fileIcon(const std::string& path, int scale) {
  NSString* const location = [NSString stringWithUTF8String:path.c_str()];
  if (location == nil) return {};
  NSImage* const icon = [NSWorkspace.sharedWorkspace iconForFile:location];
  icon.size = NSMakeSize(iconSide, iconSide);

  const int side = iconSide * scale;
  NSBitmapImageRep* const bitmap = makeBitmap(side);
  if (bitmap == nil) return {};
  NSGraphicsContext* const context = [NSGraphicsContext graphicsContextWithBitmapImageRep:bitmap];
  if (context == nil) return {};
  drawIcon(icon, context, scale);

  const unsigned char* const first = bitmap.bitmapData;
  if (first == nullptr) return {};
  const auto size = static_cast<std::ptrdiff_t>(side) * side * bytesPerPixel;
  return {.width = side, .height = side, .rgba = {first, first + size}};
}

void terminate() {
  [NSApplication.sharedApplication terminate:nil];
}

std::shared_ptr<void> watchReopening(std::function<void()> reopened) {
  return std::make_shared<ReopeningWatch>(std::move(reopened));
}

}  // namespace tarn::macos
