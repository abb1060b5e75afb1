// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/macos/desktop/status_item.hpp"

#include <AppKit/AppKit.h>

#include <utility>

namespace tarn::macos {

namespace {

// The button's own screen may be any; the first screen is the one whose corner is the origin.
ScreenPoint middleOfLowerEdge(NSView* view) {
  const NSRect inWindow = [view convertRect:view.bounds toView:nil];
  const NSRect onScreen = [view.window convertRectToScreen:inWindow];
  const CGFloat top = NSMaxY(NSScreen.screens.firstObject.frame);
  return {.x = NSMidX(onScreen), .y = top - NSMinY(onScreen)};
}

}  // namespace

}  // namespace tarn::macos

/// What the item's button calls.
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
  // A click on the menu bar activates nothing, and keys go to the active application alone.
  [NSApplication.sharedApplication activateIgnoringOtherApps:YES];
  _clicked(tarn::macos::middleOfLowerEdge(button));
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

// Nil for a name that the system does not know.
NSImage* symbolImage(const StatusItemContent& content) {
  NSImageSymbolConfiguration* const size =
      [NSImageSymbolConfiguration configurationWithPointSize:symbolPointSize weight:NSFontWeightSemibold];
  NSImageSymbolConfiguration* const palette =
      [NSImageSymbolConfiguration configurationWithPaletteColors:@[ systemColor(content.color) ]];
  NSImage* const symbol = [NSImage imageWithSystemSymbolName:systemText(content.symbolName)
                                    accessibilityDescription:nil];
  return [symbol imageWithSymbolConfiguration:[size configurationByApplyingConfiguration:palette]];
}

// The distance to the title is part of the picture: a button's own differs between versions of the system.
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

NSImage* pictureOf(const StatusItemContent& content, NSUserInterfaceLayoutDirection direction) {
  NSImage* picture = symbolImage(content);
  if (picture == nil) {
    picture = [[NSImage alloc] init];
  } else if (content.title) {
    picture = withTitleDistance(picture, direction);
  }
  // The menu bar paints templates in its own colour, but here the colour is the message.
  [picture setTemplate:NO];
  picture.accessibilityDescription = systemText(content.accessibilityLabel);
  return picture;
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
    button.image = pictureOf(content, button.userInterfaceLayoutDirection);
    button.imagePosition = content.title ? NSImageLeading : NSImageOnly;
    button.title = content.title ? systemText(*content.title) : @"";
    button.toolTip = systemText(content.toolTip);
    // It is read in the place of the title.
    button.accessibilityLabel = systemText(content.title ? content.accessibilityLabel + ", " + *content.title
                                                         : content.accessibilityLabel);
  }

 private:
  TarnStatusItemTarget* target_;  // the button does not own it
  NSStatusItem* item_;
};

}  // namespace

std::unique_ptr<StatusItem> makeStatusItem(std::function<void(ScreenPoint)> clicked) {
  return std::make_unique<SystemStatusItem>(std::move(clicked));
}

}  // namespace tarn::macos
