// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/popover/popover_placement.hpp"

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

namespace tarn {

namespace {

constexpr int gap = 6;            ///< between the popover and the panel or screen edge
constexpr int panelDepth = 72;    ///< the largest depth of a window that counts as a panel
constexpr int itemHalfSize = 14;  ///< from an item's centre to its edge, for panels that reserve no space

// A compositor lists a window some milliseconds after Qt has shown it, and draws the next frame up to 16 ms
// later. The window must be moved before that frame.
constexpr std::chrono::milliseconds locateInterval{4};
constexpr int locateAttempts = 75;  // 75 × 4 ms = 300 ms

enum class Edge { top, bottom, left, right };
constexpr std::array edges = {Edge::top, Edge::bottom, Edge::left, Edge::right};

int distance(Edge edge, const QPoint& point, const QRect& area) {
  switch (edge) {
    case Edge::top:
      return point.y() - area.top();
    case Edge::bottom:
      return area.bottom() - point.y();
    case Edge::left:
      return point.x() - area.left();
    case Edge::right:
      break;
  }
  return area.right() - point.x();
}

Edge nearer(Edge first, Edge second, const QPoint& point, const QRect& area) {
  return distance(second, point, area) < distance(first, point, area) ? second : first;
}

/// The edge whose panel an item at `point` is in.
Edge panelEdge(const QPoint& point, const ScreenArea& screen) {
  // The point may be in the space that a panel reserves.
  for (const Edge edge : edges) {
    if (distance(edge, point, screen.available) < 0) return edge;
  }
  // The last item of a panel is in a corner: it is about equally near to two edges of the screen. The
  // horizontal edge is then preferred, because horizontal panels are more common.
  const Edge horizontal = nearer(Edge::top, Edge::bottom, point, screen.whole);
  const Edge vertical = nearer(Edge::left, Edge::right, point, screen.whole);
  const int limit = distance(vertical, point, screen.whole) + itemHalfSize;
  return distance(horizontal, point, screen.whole) <= limit ? horizontal : vertical;
}

int clamped(int value, int lowest, int highest) {
  return std::max(lowest, std::min(value, highest));
}

}  // namespace

ScreenArea besidePanel(const ScreenArea& screen, const QRect& panel) {
  const QRect strip = panel & screen.whole;
  ScreenArea result = screen;
  if (strip.isEmpty() || std::min(strip.width(), strip.height()) > panelDepth) return result;
  const bool isHorizontal = strip.width() >= strip.height();
  switch (isHorizontal ? nearer(Edge::top, Edge::bottom, strip.center(), screen.whole)
                       : nearer(Edge::left, Edge::right, strip.center(), screen.whole)) {
    case Edge::top:
      result.available.setTop(std::max(result.available.top(), strip.bottom() + 1));
      break;
    case Edge::bottom:
      result.available.setBottom(std::min(result.available.bottom(), strip.top() - 1));
      break;
    case Edge::left:
      result.available.setLeft(std::max(result.available.left(), strip.right() + 1));
      break;
    case Edge::right:
      result.available.setRight(std::min(result.available.right(), strip.left() - 1));
      break;
  }
  return result;
}

bool isPlausibleAnchor(const QPoint& position, const ScreenArea& screen) {
  if (!screen.whole.contains(position)) return false;
  const auto isNear = [&](Edge edge) { return distance(edge, position, screen.whole) <= panelDepth; };
  return std::any_of(edges.begin(), edges.end(), isNear);
}

QRect popoverFrame(const std::optional<QPoint>& anchor, const QSize& size, const ScreenArea& screen) {
  const QRect free = screen.available.adjusted(gap, gap, -gap, -gap);
  const QPoint at = anchor.value_or(QPoint(screen.available.right(), screen.available.top()));
  QPoint origin(at.x() - size.width() / 2, at.y() - size.height() / 2);
  const int offset = anchor ? itemHalfSize + gap : 0;
  switch (panelEdge(at, screen)) {
    case Edge::top:
      origin.setY(std::max(free.top(), at.y() + offset));
      break;
    case Edge::bottom:
      origin.setY(std::min(free.bottom(), at.y() - offset) - size.height() + 1);
      break;
    case Edge::left:
      origin.setX(std::max(free.left(), at.x() + offset));
      break;
    case Edge::right:
      origin.setX(std::min(free.right(), at.x() - offset) - size.width() + 1);
      break;
  }
  origin.setX(clamped(origin.x(), free.left(), free.right() - size.width() + 1));
  origin.setY(clamped(origin.y(), free.top(), free.bottom() - size.height() + 1));
  return {origin, size};
}

int popoverHeightLimit(const ScreenArea& screen) {
  return std::max(0, screen.available.height() - 2 * gap);
}

CompositorConnection::CompositorConnection(std::unique_ptr<CompositorPlacement> placement,
                                           std::function<void()> located)
    : placement_(std::move(placement)), located_(std::move(located)) {
  timer_.setSingleShot(true);
  QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { locate(); });
}

void CompositorConnection::startLocating() {
  place_.reset();
  requestedCorner_.reset();
  if (!placement_ || !isEnabled_) return;
  attemptsLeft_ = locateAttempts;
  timer_.start(locateInterval);
}

void CompositorConnection::locate() {
  place_ = placement_->locate();
  if (place_) {
    located_();
  } else if (--attemptsLeft_ > 0) {
    timer_.start(locateInterval);
  }
}

void CompositorConnection::moveTo(QPoint corner) {
  if (std::exchange(requestedCorner_, corner) != corner) placement_->moveTo(corner);
}

}  // namespace tarn
