// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/procfs/procfs_reader.hpp"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <limits>
#include <utility>

#include "platform/linux/procfs/system_memory.hpp"
#include "platform/linux/procfs/text_scan.hpp"

namespace tarn {

namespace {

constexpr std::size_t shortFileSize = 4096;
constexpr std::size_t statusFileSize = 65536;

// In /proc/stat "btime" follows the "intr" line, which grows with the number of interrupts.
constexpr std::size_t systemStatSize = std::size_t{4} << 20U;

/// 1 PiB, more than any machine has. A sum of larger figures could overflow.
constexpr std::uint64_t implausibleFootprint = std::uint64_t{1} << 50U;

std::uint64_t systemConstant(int name, std::uint64_t fallback) {
  const long value = ::sysconf(name);
  return value > 0 ? static_cast<std::uint64_t>(value) : fallback;
}

/// "PID/file" without an allocation.
class ProcessFilePath {
 public:
  ProcessFilePath(std::int32_t pid, std::string_view file) {
    char* const pidEnd = std::to_chars(text_.data(), text_.data() + pidDigits, pid).ptr;
    *pidEnd = '/';
    *std::copy(file.begin(), file.end(), pidEnd + 1) = '\0';
  }

  const char* text() const { return text_.data(); }

 private:
  static constexpr std::size_t pidDigits = std::numeric_limits<std::int32_t>::digits10 + 2;
  static constexpr std::size_t longestFile = 16;  // "cmdline" is the longest name in use
  std::array<char, pidDigits + 1 + longestFile + 1> text_{};
};

}  // namespace

std::string_view readExecutablePath(int directory, const char* link, std::span<char> buffer) {
  const ssize_t length = ::readlinkat(directory, link, buffer.data(), buffer.size());
  // readlinkat() truncates silently: a target that fills the buffer may be incomplete.
  if (length <= 0 || static_cast<std::size_t>(length) >= buffer.size()) return {};
  return withoutDeletedMark({buffer.data(), static_cast<std::size_t>(length)});
}

ProcfsReader::ProcfsReader(const LinuxRoots& roots) : ProcfsReader(roots, processClockFor(roots.proc)) {}

ProcfsReader::ProcfsReader(LinuxRoots roots, ProcessClock clock)
    : roots_(std::move(roots)),
      clock_(std::move(clock)),
      bootTime_(parseBootTime(readFile(roots_.proc + "/stat", systemStatSize)).value_or(0)),
      ticksPerSecond_(systemConstant(_SC_CLK_TCK, 100)),
      pageSize_(systemConstant(_SC_PAGESIZE, 4096)),
      buffer_(shortFileSize),
      statusBuffer_(std::make_unique_for_overwrite<char[]>(statusFileSize)) {
  openDirectory();
}

bool ProcfsReader::openDirectory() {
  if (!directory_) directory_.reset(::opendir(roots_.proc.c_str()));
  return directory_ != nullptr;
}

std::vector<std::int32_t> ProcfsReader::allPIDs() {
  swapInUse_ = parseSwaps(readFile(roots_.proc + "/swaps")).used > 0;
  if (!openDirectory()) return {};
  std::vector<std::int32_t> pids;
  constexpr std::size_t usualCount = 512;
  pids.reserve(usualCount);
  ::rewinddir(directory_.get());
  errno = 0;
  while (const dirent* const entry = ::readdir(directory_.get())) {
    const auto pid = parseWholeNumber<std::int32_t>(static_cast<const char*>(entry->d_name));
    if (pid && *pid > 0) pids.push_back(*pid);
    errno = 0;
  }
  if (errno != 0) return {};
  return pids;
}

std::optional<BsdInfo> ProcfsReader::bsdInfo(std::int32_t pid) {
  const auto stat = readStat(pid);
  if (!stat) return std::nullopt;
  const auto start = startSeconds(*stat);
  const auto owner = readOwner(pid);
  if (!start || !owner) return std::nullopt;
  return BsdInfo{stat->ppid, *owner, *start};
}

std::string ProcfsReader::path(std::int32_t pid) {
  if (pid <= 0 || !openDirectory()) return {};
  const ProcessFilePath link(pid, "exe");
  return std::string(readExecutablePath(::dirfd(directory_.get()), link.text(), buffer_));
}

std::optional<ProcessUsage> ProcfsReader::usage(std::int32_t pid) {
  std::optional<std::uint64_t> time = readClock(pid);
  if (!time) {
    const auto stat = readStat(pid);
    if (stat) time = tickTime(*stat);
  }
  const auto footprint = readFootprint(pid);
  if (!footprint || !time) return std::nullopt;
  return ProcessUsage{*footprint, *time};
}

SharedText ProcfsReader::processName(std::int32_t pid) {
  const auto stat = readStat(pid);
  if (!stat) return {};
  const std::string kernelName(stat->name);
  return stat->isKernelThread ? kernelName : readFullName(pid, kernelName);
}

std::optional<ProcessStat> ProcfsReader::readStat(std::int32_t pid) {
  const auto stat = parseProcessStat(readProcessFile(pid, "stat", buffer_));
  std::uint64_t ticks = 0;
  if (!stat || __builtin_add_overflow(stat->userTicks, stat->systemTicks, &ticks)) return std::nullopt;
  return stat;
}

std::optional<std::uint32_t> ProcfsReader::readOwner(std::int32_t pid) {
  return parseRealOwner(readStatus(pid));
}

std::optional<std::uint64_t> ProcfsReader::readFootprint(std::int32_t pid) {
  const auto pages = parseProcessPages(readProcessFile(pid, "statm", buffer_));
  if (!pages) return std::nullopt;
  std::uint64_t bytes = 0;
  const std::uint64_t anonymous = pages->resident - std::min(pages->resident, pages->shared);
  if (__builtin_mul_overflow(anonymous, pageSize_, &bytes)) return std::nullopt;
  if (swapInUse_) {
    const std::string_view status = readStatus(pid);
    if (status.empty() || __builtin_add_overflow(bytes, parseSwappedBytes(status), &bytes))
      return std::nullopt;
  }
  if (bytes >= implausibleFootprint) return std::nullopt;
  return bytes;
}

std::string ProcfsReader::readFullName(std::int32_t pid, const std::string& kernelName) {
  std::string_view commandLine = readProcessFile(pid, "cmdline", buffer_);
  const bool isCutOff =
      commandLine.size() == buffer_.size() && commandLine.find('\0') == std::string_view::npos;
  if (isCutOff) commandLine = {};
  return std::string(completedName(kernelName, commandLine));
}

std::optional<std::uint64_t> ProcfsReader::startSeconds(const ProcessStat& stat) const {
  std::uint64_t seconds = 0;
  if (__builtin_add_overflow(bootTime_, stat.startTicks / ticksPerSecond_, &seconds)) return std::nullopt;
  return seconds;
}

std::optional<std::uint64_t> ProcfsReader::tickTime(const ProcessStat& stat) const {
  constexpr std::uint64_t nanosPerSecond = 1'000'000'000;
  std::uint64_t nanos = 0;
  if (__builtin_add_overflow(stat.userTicks, stat.systemTicks, &nanos) ||
      __builtin_mul_overflow(nanos, nanosPerSecond / ticksPerSecond_, &nanos))
    return std::nullopt;
  return nanos;
}

std::string_view ProcfsReader::readProcessFile(std::int32_t pid, std::string_view file,
                                               std::span<char> buffer) {
  if (pid <= 0 || !openDirectory()) return {};
  return readOnce(::dirfd(directory_.get()), ProcessFilePath(pid, file).text(), buffer);
}

std::string_view ProcfsReader::readStatus(std::int32_t pid) {
  return readProcessFile(pid, "status", {statusBuffer_.get(), statusFileSize});
}

}  // namespace tarn
