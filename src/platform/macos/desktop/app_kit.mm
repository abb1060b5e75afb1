// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/macos/desktop/app_kit.hpp"

#include <AppKit/AppKit.h>

#include <cstddef>
#include <utility>

namespace tarn::macos {

namespace {

// AppKit's coordinates start at the lower left corner of the first screen, also if the view is on another
// screen.
ScreenPoint middleOfLowerEdge(NSView* view) {
  const NSRect inWindow = [view convertRect:view.bounds toView:nil];
  const NSRect onScreen = [view.window convertRectToScreen:inWindow];
  const CGFloat top = NSMaxY(NSScreen.screens.firstObject.frame);
  return {.x = NSMidX(onScreen), .y = top - NSMinY(onScreen)};
}

}  // namespace

}  // namespace tarn::macos

/// The target of the item's button.
@interface TarnStatusItemTarget : NSObject
- (instancetype)initWithClicked:(std::function<void(tarn::macos::ScreenPoint)>)clicked;
- (void)clicked:(NSView*)button;
@end

@implementation TarnStatusItemTarget {
  std::function<void(tarn::macos::ScreenPoint)> _clicked;
}

- (instancetype)initWithClicked:(std::function<void(tarn::macos::ScreenPoint)>)clicked {
  self = [super init];
  if (self != nil) _clicked = std::move(clicked);
  return self;
}

- (void)clicked:(NSView*)button {
  // A click on the menu bar does not activate the application, and only the active one receives keys.
  [NSApplication.sharedApplication activateIgnoringOtherApps:YES];
  _clicked(tarn::macos::middleOfLowerEdge(button));
}

@end

/// Handles kAEReopenApplication.
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

constexpr CGFloat symbolPointSize = 13;
constexpr CGFloat titleDistance = 3;

NSString* systemText(const std::string& text) {
  NSString* const converted = [NSString stringWithUTF8String:text.c_str()];
  return converted == nil ? @"" : converted;
}

NSColor* systemColor(StatusColor color) {
  switch (color) {
    case StatusColor::green:
      return NSColor.systemGreenColor;
    case StatusColor::orange:
      return NSColor.systemOrangeColor;
    case StatusColor::red:
      break;
  }
  return NSColor.systemRedColor;
}

// Nil for an unknown symbol name.
NSImage* symbolImage(const StatusItemContent& content) {
  NSImageSymbolConfiguration* const size =
      [NSImageSymbolConfiguration configurationWithPointSize:symbolPointSize weight:NSFontWeightSemibold];
  NSImageSymbolConfiguration* const palette =
      [NSImageSymbolConfiguration configurationWithPaletteColors:@[ systemColor(content.color) ]];
  NSImage* const symbol = [NSImage imageWithSystemSymbolName:systemText(content.symbolName)
                                    accessibilityDescription:nil];
  return [symbol imageWithSymbolConfiguration:[size configurationByApplyingConfiguration:palette]];
}

// The image includes the distance to the title, because the distance that NSButton uses differs between macOS
// versions.
NSImage* withTitleDistance(NSImage* symbol, NSUserInterfaceLayoutDirection direction) {
  const NSSize size = symbol.size;
  const CGFloat left = direction == NSUserInterfaceLayoutDirectionRightToLeft ? titleDistance : 0;
  return [NSImage imageWithSize:NSMakeSize(size.width + titleDistance, size.height)
                        flipped:NO
                 drawingHandler:^BOOL(NSRect) {
                   [symbol drawInRect:NSMakeRect(left, 0, size.width, size.height)];
                   return YES;
                 }];
}

NSImage* makeImage(const StatusItemContent& content, NSUserInterfaceLayoutDirection direction) {
  NSImage* image = symbolImage(content);
  if (image == nil) {
    image = [[NSImage alloc] init];
  } else if (content.title) {
    image = withTitleDistance(image, direction);
  }
  // The menu bar draws a template image in its own colour.
  [image setTemplate:NO];
  image.accessibilityDescription = systemText(content.accessibilityLabel);
  return image;
}

class SystemStatusItem final : public StatusItem {
 public:
  explicit SystemStatusItem(std::function<void(ScreenPoint)> clicked)
      : target_([[TarnStatusItemTarget alloc] initWithClicked:std::move(clicked)]),
        item_([NSStatusBar.systemStatusBar statusItemWithLength:NSVariableStatusItemLength]) {
    NSStatusBarButton* const button = item_.button;
    button.target = target_;
    button.action = @selector(clicked:);
    button.imageHugsTitle = YES;
  }

  SystemStatusItem(const SystemStatusItem&) = delete;
  SystemStatusItem& operator=(const SystemStatusItem&) = delete;

  ~SystemStatusItem() override { [NSStatusBar.systemStatusBar removeStatusItem:item_]; }

  void show(const StatusItemContent& content) override {
    NSStatusBarButton* const button = item_.button;
    button.image = makeImage(content, button.userInterfaceLayoutDirection);
    button.imagePosition = content.title ? NSImageLeading : NSImageOnly;
    button.title = content.title ? systemText(*content.title) : @"";
    button.toolTip = systemText(content.toolTip);
    // VoiceOver reads this instead of the title.
    button.accessibilityLabel = systemText(content.title ? content.accessibilityLabel + ", " + *content.title
                                                         : content.accessibilityLabel);
  }

 private:
  TarnStatusItemTarget* target_;  // NSControl does not retain its target
  NSStatusItem* item_;
};

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
  // NSCompositingOperationCopy, because a new bitmap may contain visible pixels.
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
  TarnReopeningHandler* handler_;  // the event manager does not retain it
};

}  // namespace

std::unique_ptr<StatusItem> makeStatusItem(std::function<void(ScreenPoint)> clicked) {
  return std::make_unique<SystemStatusItem>(std::move(clicked));
}

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
