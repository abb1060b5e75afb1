// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/procfs/namespaced_pid.hpp"

#include <filesystem>
#include <string_view>
#include <system_error>

#include "platform/linux/procfs/file_reading.hpp"
#include "platform/linux/procfs/proc_pid_files.hpp"
#include "platform/linux/procfs/text_scan.hpp"

namespace tarn {

namespace {

bool isUserProcessOf(std::string_view status, std::uint32_t owner) {
  return parseRealOwner(status) == owner && hasMemory(status);
}

}  // namespace

std::optional<std::int32_t> resolveNamespacedPid(const std::string& proc, std::int32_t declared,
                                                 std::uint32_t owner,
                                                 std::chrono::steady_clock::time_point deadline) {
  std::optional<std::int32_t> found;
  std::error_code error;
  std::filesystem::directory_iterator entry(proc, error);
  for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
    if (std::chrono::steady_clock::now() >= deadline) return std::nullopt;
    const auto pid = parseWholeNumber<std::int32_t>(entry->path().filename().string());
    if (!pid) continue;
    const std::string status = readFile(entry->path().string() + "/status");
    if (parseInnermostPid(status) != declared || !isUserProcessOf(status, owner)) continue;
    if (found) return std::nullopt;
    found = pid;
  }
  return error ? std::nullopt : found;
}

}  // namespace tarn
