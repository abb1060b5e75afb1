// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/procfs/proc_pid_files.hpp"

#include <array>

#include "platform/linux/procfs/text_scan.hpp"

namespace tarn {

namespace {

/// Positions of the fields that follow the name.
enum StatField : std::size_t {
  state,
  parent,
  flags = 6,
  userTime = 11,
  systemTime = 12,
  startTime = 19,
  fieldCount
};

/// The value behind `label` at the start of a line; empty when no line has that label.
std::string_view valueOf(std::string_view text, std::string_view label) {
  while (!text.empty()) {
    std::string_view line = takeLine(text);
    if (line.starts_with(label)) return line.substr(label.size());
  }
  return {};
}

}  // namespace

std::optional<ProcessStat> parseProcessStat(std::string_view text) {
  const std::size_t open = text.find('(');
  // The name may hold parentheses and line ends itself; only numbers follow it.
  const std::size_t close = text.rfind(')');
  if (open == std::string_view::npos || close == std::string_view::npos || close < open) return std::nullopt;

  std::string_view rest = text.substr(close + 1);
  std::array<std::string_view, fieldCount> fields;
  for (std::string_view& field : fields) field = takeWord(rest);
  // Without anything behind it, the last number may be the first digits of a longer one.
  if (rest.empty() || fields[state].size() != 1) return std::nullopt;

  const auto ppid = parseWholeNumber<std::int32_t>(fields[parent]);
  const auto user = parseWholeNumber<std::uint64_t>(fields[userTime]);
  const auto system = parseWholeNumber<std::uint64_t>(fields[systemTime]);
  const auto start = parseWholeNumber<std::uint64_t>(fields[startTime]);
  if (!ppid || *ppid < 0 || !user || !system || !start) return std::nullopt;
  constexpr std::uint32_t kernelThread = 0x00200000;
  const bool isKernelThread =
      (parseWholeNumber<std::uint32_t>(fields[flags]).value_or(0) & kernelThread) != 0;
  return ProcessStat{text.substr(open + 1, close - open - 1), *ppid, *user, *system, *start, isKernelThread};
}

std::string_view withoutDeletedMark(std::string_view path) {
  constexpr std::string_view mark = " (deleted)";
  if (path.ends_with(mark)) path.remove_suffix(mark.size());
  return path;
}

std::optional<ProcessPages> parseProcessPages(std::string_view text) {
  takeWord(text);  // the size of the address space says nothing about memory
  const auto resident = parseWholeNumber<std::uint64_t>(takeWord(text));
  const auto shared = parseWholeNumber<std::uint64_t>(takeWord(text));
  if (!resident || !shared || text.empty()) return std::nullopt;
  return ProcessPages{*resident, *shared};
}

std::optional<std::uint32_t> parseRealOwner(std::string_view status) {
  std::string_view owners = valueOf(status, "Uid:");
  return parseWholeNumber<std::uint32_t>(takeWord(owners));
}

std::optional<std::int32_t> parseInnermostPid(std::string_view status) {
  std::string_view pids = valueOf(status, "NSpid:");
  std::string_view innermost;
  for (std::string_view pid = takeWord(pids); !pid.empty(); pid = takeWord(pids)) innermost = pid;
  const auto pid = parseWholeNumber<std::int32_t>(innermost);
  return pid && *pid > 0 ? pid : std::nullopt;
}

bool hasMemory(std::string_view status) {
  return !valueOf(status, "VmSize:").empty();
}

std::uint64_t parseSwappedBytes(std::string_view status) {
  return parseKibibytes(valueOf(status, "VmSwap:")).value_or(0);
}

std::optional<std::uint64_t> parseBootTime(std::string_view systemStat) {
  std::string_view value = valueOf(systemStat, "btime ");
  return parseWholeNumber<std::uint64_t>(takeWord(value));
}

std::string_view completedName(std::string_view kernelName, std::string_view commandLine) {
  const std::string_view argument = commandLine.substr(0, commandLine.find('\0'));
  // find_last_of gives npos, and npos + 1 is 0, where there is no slash.
  const std::string_view component = argument.substr(argument.find_last_of('/') + 1);
  if (!component.starts_with(kernelName)) return kernelName;
  std::string_view word = component.substr(0, component.find_first_of(" \t\n", kernelName.size()));
  if (word.size() > kernelName.size() && word.ends_with(':')) word.remove_suffix(1);
  return word;
}

}  // namespace tarn
