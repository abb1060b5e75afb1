// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/sysfs/temperature_sensors.hpp"

#include <algorithm>
#include <array>
#include <cctype>

#include "platform/linux/procfs/text_scan.hpp"

namespace tarn {

namespace {

/// "temp" and a number and "_input".
bool isTemperatureInput(std::string_view file) {
  constexpr std::string_view stem = "temp";
  constexpr std::string_view ending = "_input";
  if (!file.starts_with(stem) || !file.ends_with(ending)) return false;
  file.remove_prefix(stem.size());
  file.remove_suffix(std::min(file.size(), ending.size()));
  return parseWholeNumber<unsigned>(file).has_value();
}

std::string labelOf(const DeviceDirectory& chip, const std::string& input) {
  constexpr std::string_view ending = "input";
  return chip.text(input.substr(0, input.size() - ending.size()) + "label");
}

std::vector<std::string> temperatureInputs(const DeviceDirectory& chip) {
  std::vector<std::string> inputs = chip.files();
  std::erase_if(inputs, [](const std::string& file) { return !isTemperatureInput(file); });
  // AMD's control value is the temperature of the die with an offset for the fans, of 10 to 27 degrees on
  // some processors, which tell the die's own as well.
  const auto isDie = [&](const std::string& input) { return labelOf(chip, input) == "Tdie"; };
  if (std::any_of(inputs.begin(), inputs.end(), isDie)) {
    std::erase_if(inputs, [&](const std::string& input) { return labelOf(chip, input) == "Tctl"; });
  }
  return inputs;
}

/// Names are written with capitals or without, with hyphens in zones and underscores in chips.
std::string plainName(std::string_view name) {
  std::string plain(name);
  for (char& character : plain) {
    character =
        character == '-' ? '_' : static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
  }
  return plain;
}

template <typename Matches>
std::vector<double> readingsOf(const ThermalZones& zones, Matches matches) {
  std::vector<double> readings;
  for (const ThermalZone& zone : zones.all()) {
    if (!matches(zone.type)) continue;
    if (const auto celsius = zone.directory.celsius("temp")) readings.push_back(*celsius);
  }
  return readings;
}

}  // namespace

bool isProcessorSensor(std::string_view name) {
  constexpr std::array<std::string_view, 10> names = {
      "coretemp",     "k8temp", "k10temp",     "zenpower",        "via_cputemp",
      "x86_pkg_temp", "b0d4",   "soc_thermal", "package_thermal", "imx_thermal_zone"};
  constexpr std::array<std::string_view, 6> beginnings = {"cpu",     "tcpu",       "soc_dts",
                                                          "bigcore", "littlecore", "cluster"};
  const std::string plain = plainName(name);
  return std::find(names.begin(), names.end(), plain) != names.end() ||
         std::any_of(beginnings.begin(), beginnings.end(),
                     [&](std::string_view beginning) { return plain.starts_with(beginning); });
}

void ProcessorSensors::lookForSensors() {
  sensors_.clear();
  bool allAnswer = true;
  for (DeviceDirectory& directory : chips_.devices()) {
    const std::string name = directory.text("name");
    const bool isProcessors = isProcessorSensor(name);
    auto inputs = isProcessors ? temperatureInputs(directory) : std::vector<std::string>();
    allAnswer = allAnswer && !name.empty() && (!isProcessors || !inputs.empty());
    if (!inputs.empty()) sensors_.push_back({std::move(directory), std::move(inputs)});
  }
  if (allAnswer) chips_.settle();  // else one came this moment and is not complete yet
}

std::vector<double> ProcessorSensors::readings(const ThermalZones& zones) {
  if (chips_.hasChanged()) lookForSensors();
  std::vector<double> readings;
  for (const Chip& chip : sensors_) {
    for (const std::string& input : chip.inputs) {
      if (const auto celsius = chip.directory.celsius(input)) readings.push_back(*celsius);
    }
  }
  if (readings.empty()) readings = readingsOf(zones, isProcessorSensor);
  if (readings.empty()) readings = readingsOf(zones, [](std::string_view type) { return type == "acpitz"; });
  return readings;
}

}  // namespace tarn
