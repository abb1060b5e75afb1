// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "ui/symbols/symbols.hpp"

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <QStringList>
#include <QTransform>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>

namespace tarn {
namespace {

const QColor grey(0x5c, 0x5c, 0x62);

QStringList statusNames() {
  return {"circle", "circle.lefthalf.filled", "circle.fill"};
}

QStringList allNames() {
  return statusNames() +
         QStringList{"memorychip",     "cpu",           "desktopcomputer",  "ellipsis.circle.fill",
                     "gearshape.fill", "chevron.right", "chevron.left",     "chevron.down",
                     "internaldrive",  "battery.0",     "battery.25",       "battery.50",
                     "battery.75",     "battery.100",   "battery.100.bolt", "thermometer.medium",
                     "clock",          "checkmark"};
}

QImage transparentImage(int side) {
  QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  return image;
}

QImage rendered(const QString& name, int pixels, SymbolWeight weight = SymbolWeight::regular) {
  QImage image = transparentImage(pixels);
  QPainter painter(&image);
  EXPECT_TRUE(drawSymbol(painter, name, QRectF(0, 0, pixels, pixels), grey, weight)) << name.toStdString();
  return image;
}

int alphaAt(const QImage& image, int x, int y) {
  return qAlpha(image.pixel(x, y));
}

/// The smallest rectangle that contains all drawn pixels; invalid if there are none.
QRect drawnBounds(const QImage& image) {
  QRect bounds;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (alphaAt(image, x, y) > 0) bounds |= QRect(x, y, 1, 1);
    }
  }
  return bounds;
}

/// The covered area in pixels.
double coveredArea(const QImage& image) {
  double sum = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) sum += alphaAt(image, x, y) / 255.0;
  }
  return sum;
}

int largestDifference(const QImage& first, const QImage& second) {
  int largest = 0;
  for (int y = 0; y < first.height(); ++y) {
    for (int x = 0; x < first.width(); ++x) {
      largest = std::max(largest, std::abs(alphaAt(first, x, y) - alphaAt(second, x, y)));
    }
  }
  return largest;
}

constexpr int roundingOfCoverage = 12;  // largest difference in alpha (0 to 255) of antialiased pixels

TEST(Symbols, StayInsideTheirRectangle) {
  for (const QString& name : allNames()) {
    for (const SymbolWeight weight : {SymbolWeight::regular, SymbolWeight::semibold}) {
      for (const int size : {5, 9, 10, 13, 14, 16, 17, 18, 22, 24, 32, 96}) {
        SCOPED_TRACE(name.toStdString() + " at " + std::to_string(size));
        QImage image = transparentImage(size + 8);
        QPainter painter(&image);
        EXPECT_TRUE(drawSymbol(painter, name, QRectF(4, 4, size, size), grey, weight));
        const QRect bounds = drawnBounds(image);
        ASSERT_TRUE(bounds.isValid());
        EXPECT_TRUE(QRect(4, 4, size, size).contains(bounds));
        EXPECT_GE(std::max(bounds.width(), bounds.height()), size / 2);
      }
    }
  }
}

TEST(Symbols, DrawNothingForAnUnknownName) {
  for (const QString& name : {QString(), QString("Circle"), QString("circle.filled"), QString("battery")}) {
    QImage image = transparentImage(16);
    image.fill(QColor(10, 20, 30));
    const QImage before = image.copy();
    QPainter painter(&image);
    EXPECT_FALSE(drawSymbol(painter, name, QRectF(0, 0, 16, 16), grey));
    EXPECT_EQ(image, before);
  }
}

TEST(Symbols, ReturnATransparentPixmapForAnUnknownName) {
  const QPixmap pixmap = symbolPixmap("no.such.symbol", 16, grey, 1);
  ASSERT_EQ(pixmap.size(), QSize(16, 16));
  EXPECT_FALSE(drawnBounds(pixmap.toImage()).isValid());
}

TEST(Symbols, HaveOnlyTheGivenColour) {
  for (const QColor& color : {QColor(0x26, 0xa2, 0x69), QColor(0xff, 0x6a, 0x5e), QColor(Qt::white)}) {
    for (const QString& name : allNames()) {
      SCOPED_TRACE(name.toStdString());
      const QImage image = symbolPixmap(name, 64, color, 1).toImage();
      int covered = 0;
      for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
          if (alphaAt(image, x, y) != 255) continue;
          ++covered;
          ASSERT_EQ(image.pixel(x, y), color.rgba());
        }
      }
      EXPECT_GT(covered, 50);
    }
  }
}

TEST(Symbols, PaintATranslucentColourOnlyOnce) {
  const QColor translucent(0, 0, 0, 100);
  for (const QString& name : allNames()) {
    SCOPED_TRACE(name.toStdString());
    const QImage image = symbolPixmap(name, 64, translucent, 1).toImage();
    int largest = 0;
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) largest = std::max(largest, alphaAt(image, x, y));
    }
    EXPECT_EQ(largest, 100);
  }
}

TEST(Symbols, HaveTwiceThePixelsAtTwiceTheScale) {
  const QPixmap plain = symbolPixmap("clock", 18, grey, 1);
  EXPECT_EQ(plain.size(), QSize(18, 18));
  EXPECT_EQ(plain.devicePixelRatio(), 1);
  const QPixmap doubled = symbolPixmap("clock", 18, grey, 2);
  EXPECT_EQ(doubled.size(), QSize(36, 36));
  EXPECT_EQ(doubled.devicePixelRatio(), 2);
  EXPECT_EQ(largestDifference(doubled.toImage(), rendered("clock", 36)), 0);
}

TEST(Symbols, FillTheirPixmapAtFractionalScales) {
  for (const double scale : {1.25, 1.5, 1.75}) {
    const QPixmap pixmap = symbolPixmap("gearshape.fill", 18, grey, scale);
    const int side = static_cast<int>(std::round(18 * scale));
    ASSERT_EQ(pixmap.size(), QSize(side, side));
    EXPECT_EQ(largestDifference(pixmap.toImage(), rendered("gearshape.fill", side)), 0);
  }
}

TEST(Symbols, ReturnANullPixmapForAnInvalidSize) {
  constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
  constexpr double infinite = std::numeric_limits<double>::infinity();
  for (const double size : {0.0, -16.0, 0.2, 1e9, notANumber, infinite}) {
    EXPECT_TRUE(symbolPixmap("circle", size, grey, 1).isNull()) << size;
  }
  for (const double scale : {0.0, -1.0, 0.01, 1e9, notANumber, infinite}) {
    EXPECT_TRUE(symbolPixmap("circle", 16, grey, scale).isNull()) << scale;
  }
  EXPECT_TRUE(symbolPixmap("circle", -16, grey, -1).isNull());
}

TEST(Symbols, DrawNothingInARectangleWithoutArea) {
  constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
  for (const QRectF& rect :
       {QRectF(), QRectF(4, 4, -8, 8), QRectF(4, 4, 8, 0.5), QRectF(0, 0, notANumber, 8)}) {
    QImage image = transparentImage(16);
    QPainter painter(&image);
    EXPECT_TRUE(drawSymbol(painter, "circle.fill", rect, grey));
    EXPECT_FALSE(drawnBounds(image).isValid());
  }
}

TEST(Symbols, AreCentredInAnOblongRectangle) {
  QImage image = transparentImage(40);
  QPainter painter(&image);
  drawSymbol(painter, "circle.fill", QRectF(0, 12, 40, 16), grey);
  const QRect bounds = drawnBounds(image);
  EXPECT_EQ(bounds.left(), 39 - bounds.right());
  EXPECT_EQ(bounds.top(), 39 - bounds.bottom());
  EXPECT_LE(bounds.height(), 16);
}

TEST(Symbols, LookTheSameAtEveryPosition) {
  const QImage aligned = rendered("memorychip", 14);
  QImage image = transparentImage(20);
  QPainter painter(&image);
  painter.translate(2.5, 2.25);
  drawSymbol(painter, "memorychip", QRectF(0, 0, 14, 14), grey);
  EXPECT_EQ(largestDifference(image.copy(3, 2, 14, 14), aligned), 0);
}

TEST(Symbols, RestoreThePaintersState) {
  QImage image = transparentImage(16);
  QPainter painter(&image);
  painter.translate(1, 2);
  painter.setPen(Qt::red);
  const QTransform transform = painter.transform();
  const QPainter::RenderHints hints = painter.renderHints();
  drawSymbol(painter, "cpu", QRectF(0, 0, 14, 14), grey);
  EXPECT_EQ(painter.transform(), transform);
  EXPECT_EQ(painter.renderHints(), hints);
  EXPECT_EQ(painter.pen().color(), QColor(Qt::red));
}

TEST(StatusCircles, HaveTheSameBounds) {
  for (const SymbolWeight weight : {SymbolWeight::regular, SymbolWeight::semibold}) {
    for (const int size : {13, 16, 22, 24, 26, 48, 64}) {
      const QRect ring = drawnBounds(rendered("circle", size, weight));
      EXPECT_EQ(drawnBounds(rendered("circle.lefthalf.filled", size, weight)), ring) << size;
      EXPECT_EQ(drawnBounds(rendered("circle.fill", size, weight)), ring) << size;
      EXPECT_EQ(ring.width(), ring.height()) << size;
    }
  }
}

TEST(StatusCircles, AreRingHalfDiscAndDisc) {
  for (const int size : {16, 22, 24, 64}) {
    SCOPED_TRACE(size);
    const int middle = size / 2;
    const int left = middle - 2;
    const int right = middle + 1;
    const QImage ring = rendered("circle", size, SymbolWeight::semibold);
    EXPECT_EQ(alphaAt(ring, left, middle), 0);
    EXPECT_EQ(alphaAt(ring, right, middle), 0);
    const QImage half = rendered("circle.lefthalf.filled", size, SymbolWeight::semibold);
    EXPECT_EQ(alphaAt(half, left, middle), 255);
    EXPECT_EQ(alphaAt(half, middle - 1, middle), 255);
    EXPECT_EQ(alphaAt(half, middle, middle), 0);
    EXPECT_EQ(alphaAt(half, right, middle), 0);
    const QImage disc = rendered("circle.fill", size, SymbolWeight::semibold);
    EXPECT_EQ(alphaAt(disc, left, middle), 255);
    EXPECT_EQ(alphaAt(disc, right, middle), 255);
  }
}

TEST(StatusCircles, HalfIsTheDiscOnTheLeftAndTheRingOnTheRight) {
  const QImage half = rendered("circle.lefthalf.filled", 24);
  EXPECT_LE(largestDifference(half.copy(0, 0, 12, 24), rendered("circle.fill", 24).copy(0, 0, 12, 24)),
            roundingOfCoverage);
  EXPECT_LE(largestDifference(half.copy(12, 0, 12, 24), rendered("circle", 24).copy(12, 0, 12, 24)),
            roundingOfCoverage);
}

TEST(FilledSymbols, HaveTransparentHoles) {
  for (const int size : {18, 36, 96}) {
    SCOPED_TRACE(size);
    const int middle = size / 2;
    const QImage gear = rendered("gearshape.fill", size);
    EXPECT_EQ(alphaAt(gear, middle, middle), 0);
    EXPECT_EQ(alphaAt(gear, middle, middle - size / 4), 255);
    const QImage ellipsis = rendered("ellipsis.circle.fill", size);
    for (const int dot : {-size * 2 / 9, 0, size * 2 / 9}) {
      EXPECT_LT(alphaAt(ellipsis, middle + dot, middle), 64) << dot;
    }
    EXPECT_GT(alphaAt(ellipsis, middle - size / 9, middle), 200);
    EXPECT_EQ(alphaAt(ellipsis, middle, middle - size / 4), 255);
  }
}

TEST(Chevrons, AreRotationsOfOneShape) {
  for (const int size : {9, 18, 32}) {
    SCOPED_TRACE(size);
    const QImage right = rendered("chevron.right", size, SymbolWeight::semibold);
    const QImage down = rendered("chevron.down", size, SymbolWeight::semibold);
    const QImage swappedAxes = right.transformed(QTransform(0, 1, 1, 0, 0, 0));
    ASSERT_EQ(swappedAxes.size(), down.size());
    EXPECT_LE(largestDifference(swappedAxes, down), roundingOfCoverage);
    EXPECT_LE(largestDifference(right.mirrored(false, true), right), roundingOfCoverage);
    const QImage left = rendered("chevron.left", size, SymbolWeight::semibold);
    EXPECT_LE(largestDifference(right.mirrored(true, false), left), roundingOfCoverage);
  }
}

TEST(Chevrons, PointInTheirDirection) {
  const QImage right = rendered("chevron.right", 32);
  EXPECT_GT(alphaAt(right, 20, 16), 200);
  EXPECT_EQ(alphaAt(right, 10, 16), 0);
  const QImage left = rendered("chevron.left", 32);
  EXPECT_GT(alphaAt(left, 11, 16), 200);
  EXPECT_EQ(alphaAt(left, 21, 16), 0);
  const QImage down = rendered("chevron.down", 32);
  EXPECT_GT(alphaAt(down, 16, 20), 200);
  EXPECT_EQ(alphaAt(down, 16, 10), 0);
}

TEST(Symbols, AreSymmetric) {
  for (const QString& name : {QString("circle"), QString("circle.fill"), QString("memorychip"),
                              QString("cpu"), QString("desktopcomputer"), QString("ellipsis.circle.fill"),
                              QString("gearshape.fill"), QString("thermometer.medium")}) {
    for (const int size : {13, 14, 16, 18, 28}) {
      SCOPED_TRACE(name.toStdString() + " at " + std::to_string(size));
      const QImage image = rendered(name, size);
      EXPECT_LE(largestDifference(image.mirrored(true, false), image), roundingOfCoverage);
    }
  }
}

TEST(Symbols, HaveSharpOuterEdgesAtTextSizes) {
  for (const QString& name :
       {QString("memorychip"), QString("desktopcomputer"), QString("internaldrive"), QString("battery.50")}) {
    for (const int size : {13, 14, 16, 18, 36}) {
      SCOPED_TRACE(name.toStdString() + " at " + std::to_string(size));
      const QImage image = rendered(name, size, SymbolWeight::semibold);
      EXPECT_EQ(alphaAt(image, drawnBounds(image).left(), size / 2), 255);
    }
  }
}

TEST(Symbols, ShowMemoryAndProcessorDifferentlyAtTextSize) {
  const QImage memory = rendered("memorychip", 14, SymbolWeight::semibold);
  const QImage processor = rendered("cpu", 14, SymbolWeight::semibold);
  int different = 0;
  for (int y = 0; y < 14; ++y) {
    for (int x = 0; x < 14; ++x) {
      if (std::abs(alphaAt(memory, x, y) - alphaAt(processor, x, y)) > 128) ++different;
    }
  }
  EXPECT_GT(different, 14 * 14 / 5);
  EXPECT_EQ(alphaAt(memory, 7, 7), 0);
  EXPECT_GT(alphaAt(processor, 7, 7), 200);
}

TEST(Batteries, CoverMoreAreaTheFullerTheyAre) {
  for (const int size : {13, 14, 16, 18, 26, 36}) {
    double before = 0;
    for (const QString& name : {QString("battery.0"), QString("battery.25"), QString("battery.50"),
                                QString("battery.75"), QString("battery.100")}) {
      const double now = coveredArea(rendered(name, size));
      EXPECT_GT(now, before + 0.5) << name.toStdString() << " at " << size;
      before = now;
    }
  }
}

TEST(Batteries, ShowABoltWhileCharging) {
  const QImage charging = rendered("battery.100.bolt", 96);
  const QImage empty = rendered("battery.0", 96);
  EXPECT_GT(drawnBounds(charging).height(), drawnBounds(empty).height());
  EXPECT_EQ(drawnBounds(charging).left(), drawnBounds(empty).left());
  EXPECT_EQ(drawnBounds(charging).right(), drawnBounds(empty).right());
  EXPECT_EQ(alphaAt(charging, 41, 48), 255);
}

TEST(Symbols, AreHeavierWhenSemibold) {
  for (const QString& name : allNames()) {
    // Filled symbols have no stroke, and a wider stroke leaves less space for the charge.
    if (name.endsWith(".fill") || (name.startsWith("battery.") && name != "battery.0")) continue;
    EXPECT_GT(coveredArea(rendered(name, 32, SymbolWeight::semibold)), 1.03 * coveredArea(rendered(name, 32)))
        << name.toStdString();
  }
}

}  // namespace
}  // namespace tarn
