// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/procfs/proc_pid_files.hpp"

#include <array>
#include <filesystem>
#include <system_error>

#include "platform/linux/procfs/file_reading.hpp"
#include "platform/linux/procfs/text_scan.hpp"

namespace tarn {

namespace {

// Field numbers of man 5 proc_pid_stat.
constexpr std::size_t stateField = 3;
constexpr std::size_t ppidField = 4;
constexpr std::size_t flagsField = 9;
constexpr std::size_t utimeField = 14;
constexpr std::size_t stimeField = 15;
constexpr std::size_t starttimeField = 22;

/// Returns the rest of the first line that starts with `label`; empty when there is none.
std::string_view valueOf(std::string_view text, std::string_view label) {
  while (!text.empty()) {
    std::string_view line = takeLine(text);
    if (line.starts_with(label)) return line.substr(label.size());
  }
  return {};
}

bool isUserProcessOf(std::string_view status, std::uint32_t owner) {
  return parseRealOwner(status) == owner && hasMemory(status);
}

}  // namespace

std::optional<ProcessStat> parseProcessStat(std::string_view text) {
  const std::size_t open = text.find('(');
  // The last ")" ends the name: only numbers and the state letter follow.
  const std::size_t nameEnd = text.rfind(')');
  if (open == std::string_view::npos || nameEnd == std::string_view::npos || nameEnd < open)
    return std::nullopt;

  std::string_view rest = text.substr(nameEnd + 1);
  std::array<std::string_view, starttimeField + 1> fields;
  for (std::size_t number = stateField; number < fields.size(); ++number) fields[number] = takeWord(rest);
  // A number at the very end of the text may be cut off.
  if (rest.empty() || fields[stateField].size() != 1) return std::nullopt;

  const auto ppid = parseWholeNumber<std::int32_t>(fields[ppidField]);
  const auto flags = parseWholeNumber<std::uint32_t>(fields[flagsField]);
  const auto user = parseWholeNumber<std::uint64_t>(fields[utimeField]);
  const auto system = parseWholeNumber<std::uint64_t>(fields[stimeField]);
  const auto start = parseWholeNumber<std::uint64_t>(fields[starttimeField]);
  if (!ppid || *ppid < 0 || !user || !system || !start) return std::nullopt;
  constexpr std::uint32_t kernelThreadFlag = 0x00200000;  // PF_KTHREAD in include/linux/sched.h
  const char state = fields[stateField].front();
  return ProcessStat{.name = text.substr(open + 1, nameEnd - open - 1),
                     .isZombie = state == 'Z' || state == 'X',
                     .ppid = *ppid,
                     .isKernelThread = (flags.value_or(0) & kernelThreadFlag) != 0,
                     .userTicks = *user,
                     .systemTicks = *system,
                     .startTicks = *start};
}

std::string_view withoutDeletedMark(std::string_view path) {
  constexpr std::string_view deletedMark = " (deleted)";
  if (path.ends_with(deletedMark)) path.remove_suffix(deletedMark.size());
  return path;
}

std::optional<ProcessPages> parseProcessPages(std::string_view text) {
  takeWord(text);  // (1) size
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
  // Without a slash find_last_of returns npos, and npos + 1 is 0.
  const std::string_view component = argument.substr(argument.find_last_of('/') + 1);
  if (!component.starts_with(kernelName)) return kernelName;
  std::string_view word = component.substr(0, component.find_first_of(" \t\n", kernelName.size()));
  if (word.size() > kernelName.size() && word.ends_with(':')) word.remove_suffix(1);
  return word;
}

std::optional<std::int32_t> resolveNamespacedPid(const std::string& proc, std::int32_t declared,
                                                 std::uint32_t owner,
                                                 std::chrono::steady_clock::time_point deadline) {
  std::optional<std::int32_t> match;
  std::error_code error;
  std::filesystem::directory_iterator entry(proc, error);
  for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
    if (std::chrono::steady_clock::now() >= deadline) return std::nullopt;
    const auto pid = parseWholeNumber<std::int32_t>(entry->path().filename().string());
    if (!pid) continue;
    const std::string status = readFile(entry->path().string() + "/status");
    if (parseInnermostPid(status) != declared || !isUserProcessOf(status, owner)) continue;
    if (match) return std::nullopt;
    match = pid;
  }
  return error ? std::nullopt : match;
}

}  // namespace tarn
