// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

namespace tarn {

/// Writes the files that a machine description (tests/fixtures/linux/machines/NAME.machine) lists below
/// `root`. A line "[directory]" names a directory. Each line "name = text" below it is a file. A file without
/// text stands for a file whose driver returns no data. Lines that begin with '#' are comments. Throws
/// std::runtime_error.
inline void layOutMachine(const std::filesystem::path& description, const std::filesystem::path& root) {
  std::ifstream lines(description);
  if (!lines) throw std::runtime_error("cannot read " + description.string());
  std::filesystem::path directory = root;
  for (std::string line; std::getline(lines, line);) {
    if (line.empty() || line.front() == '#') continue;
    if (line.front() == '[') {
      directory = root / line.substr(1, line.size() - 2);
      std::filesystem::create_directories(directory);
      continue;
    }
    const std::size_t equals = line.find(" =");
    if (equals == std::string::npos) throw std::runtime_error("not a file: " + line);
    std::ofstream file(directory / line.substr(0, equals));
    if (line.size() > equals + 3) file << line.substr(equals + 3) << '\n';  // after " = "
    if (!file.flush()) throw std::runtime_error("cannot write " + line);
  }
}

}  // namespace tarn
