// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

// The main thread's work for a snapshot: texts, rows, icons.

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QIcon>
#include <QImage>
#include <string>
#include <vector>

#include "format/formatting.hpp"
#include "platform/icu/icu_formatters.hpp"
#include "ui/menu_bar/menu_bar_label.hpp"
#include "ui/popover/app_row.hpp"
#include "ui/popover/application_list.hpp"
#include "ui/symbols/symbols.hpp"

namespace tarn {
namespace {

void formatBytes(benchmark::State& state) {
  std::uint64_t bytes = 1'234'567;
  while (state.KeepRunning())
    benchmark::DoNotOptimize(ByteFormatting::string(bytes += 7919, icuFormatters().bytes));
}
BENCHMARK(formatBytes);

void formatPercentage(benchmark::State& state) {
  double share = 0;
  while (state.KeepRunning())
    benchmark::DoNotOptimize(CPUFormatting::string(share += 0.37, icuFormatters().percents));
}
BENCHMARK(formatPercentage);

std::vector<RowContent> makeRows(int round) {
  constexpr int count = 9;
  std::vector<RowContent> rows;
  rows.reserve(count);
  for (int i = 0; i < count; ++i) {
    rows.push_back({.id = "pid:" + std::to_string(i),
                    .name = QStringLiteral("Application %1").arg(i),
                    .symbol = QStringLiteral("gearshape.fill"),
                    .value = QStringLiteral("%1.%2 MB").arg(round % 1000).arg(i),
                    .canExpand = true});
  }
  return rows;
}

void updateNineRows(benchmark::State& state) {
  AppIconProvider icons([](const std::string&) { return QIcon(); });
  ApplicationList list(icons);
  list.resize(320, 300);
  int round = 0;
  while (state.KeepRunning()) list.setRows(makeRows(++round));
}
BENCHMARK(updateNineRows)->Unit(benchmark::kMicrosecond);

void updateAndPaintNineRows(benchmark::State& state) {
  AppIconProvider icons([](const std::string&) { return QIcon(); });
  ApplicationList list(icons);
  list.resize(320, 300);
  QImage image(list.size(), QImage::Format_ARGB32_Premultiplied);
  int round = 0;
  while (state.KeepRunning()) {
    list.setRows(makeRows(++round));
    list.render(&image);
  }
}
BENCHMARK(updateAndPaintNineRows)->Unit(benchmark::kMicrosecond);

void renderCircle(benchmark::State& state) {
  const auto pixels = static_cast<int>(state.range(0));
  const QColor green = MenuBarIcon::color(Tint::green);
  while (state.KeepRunning())
    benchmark::DoNotOptimize(MenuBarIcon::image(QStringLiteral("circle.lefthalf.filled"), green, pixels));
}
BENCHMARK(renderCircle)->Arg(22)->Arg(64)->Unit(benchmark::kMicrosecond);

void renderGear(benchmark::State& state) {
  while (state.KeepRunning())
    benchmark::DoNotOptimize(symbolPixmap(QStringLiteral("gearshape.fill"), 16, Qt::black, 2));
}
BENCHMARK(renderGear)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tarn

int main(int argumentCount, char** arguments) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argumentCount, arguments);
  benchmark::Initialize(&argumentCount, arguments);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
