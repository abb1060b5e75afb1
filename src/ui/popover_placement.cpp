// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/popover_placement.hpp"

#include <algorithm>

namespace tarn {

namespace {

constexpr int gap = 6;          ///< between the popover and the panel or screen edge
constexpr int panelDepth = 72;  ///< no deeper panel is believed in
constexpr int itemReach = 14;   ///< from an item's middle to its edge, where the panel reserves no space

enum class Edge { top, bottom, left, right };

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

Edge nearestEdge(const QPoint& point, const QRect& area) {
  // Horizontal panels first: in a corner they are the likelier ones.
  return std::min({Edge::top, Edge::bottom, Edge::left, Edge::right}, [&](Edge one, Edge other) {
    return distance(one, point, area) < distance(other, point, area);
  });
}

int clamped(int value, int lowest, int highest) {
  return std::max(lowest, std::min(value, highest));
}

}  // namespace

bool isPlausibleAnchor(const QPoint& position, const ScreenArea& screen) {
  if (!screen.whole.contains(position)) return false;
  return distance(nearestEdge(position, screen.whole), position, screen.whole) <= panelDepth;
}

QRect popoverFrame(const std::optional<QPoint>& anchor, const QSize& size, const ScreenArea& screen) {
  const QRect free = screen.available.adjusted(gap, gap, -gap, -gap);
  const QPoint at = anchor.value_or(QPoint(screen.available.right(), screen.available.top()));
  QPoint origin(at.x() - size.width() / 2, at.y() - size.height() / 2);
  const int reach = anchor ? itemReach + gap : 0;
  switch (nearestEdge(at, screen.whole)) {
    case Edge::top:
      origin.setY(std::max(free.top(), at.y() + reach));
      break;
    case Edge::bottom:
      origin.setY(std::min(free.bottom(), at.y() - reach) - size.height() + 1);
      break;
    case Edge::left:
      origin.setX(std::max(free.left(), at.x() + reach));
      break;
    case Edge::right:
      origin.setX(std::min(free.right(), at.x() - reach) - size.width() + 1);
      break;
  }
  origin.setX(clamped(origin.x(), free.left(), free.right() - size.width() + 1));
  origin.setY(clamped(origin.y(), free.top(), free.bottom() - size.height() + 1));
  return {origin, size};
}

int popoverHeightLimit(const ScreenArea& screen) {
  return std::max(0, screen.available.height() - 2 * gap);
}

}  // namespace tarn
