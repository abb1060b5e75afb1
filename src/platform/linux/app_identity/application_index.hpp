// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "platform/linux/app_identity/desktop_entry.hpp"
#include "platform/linux/app_identity/name_table.hpp"
#include "platform/linux/procfs/linux_roots.hpp"

namespace tarn {

/// The desktop's applications by what tells their processes. An application is known by the path of its
/// desktop file. Built at the first refresh, on the thread that asks; used on one thread.
class ApplicationIndex {
 public:
  /// `dataDirectories`: those that win first. `programDirectories`: where programs are looked for that an
  /// entry names without a directory.
  ApplicationIndex(LinuxRoots roots, std::vector<std::string> dataDirectories,
                   std::vector<std::string> programDirectories);

  /// Builds the index anew if one of its directories changed. True when it did: what it said before is void.
  bool refresh();

  // The desktop file of an application; null where there is none. Valid until the index is built anew.
  const std::string* byId(std::string_view id) const;
  const std::string* byExecutable(const std::string& path) const;  ///< what its entry starts
  const std::string* byServiceExecutable(
      const std::string& path) const;  ///< of the bus service that bears its id
  const std::string* byPrivateDirectory(std::string_view path) const;  ///< innermost first

  std::size_t size() const { return files_.size(); }

  /// How many directories are looked at to see whether something changed.
  std::size_t watchedDirectoryCount() const { return stamps_.size(); }

 private:
  /// Which directory a path leads to, and when that changed; zeros where there is none.
  struct DirectoryState {
    std::uint64_t device = 0;
    std::uint64_t number = 0;
    std::int64_t seconds = 0;
    std::int64_t nanoseconds = 0;

    bool isSameDirectory(const DirectoryState& other) const {
      return device == other.device && number == other.number;
    }
    bool operator==(const DirectoryState&) const = default;
  };
  struct Stamp {
    std::string directory;
    DirectoryState state;
  };

  void build();
  void addDirectory(const std::string& directory, const std::string& idPrefix, int depth);
  void addFile(const std::string& file, std::string id);
  void addExecutable(const DesktopEntry& entry, const std::string& id, std::uint32_t file);
  void addServices(const std::string& directory);
  std::string resolved(const std::string& program) const;
  const std::string* fileOf(const NameTable& names, std::string_view name) const;
  static DirectoryState stateOf(const std::string& directory);

  LinuxRoots roots_;
  std::vector<std::string> dataDirectories_;
  std::vector<std::string> programDirectories_;
  bool isBuilt_ = false;
  std::vector<Stamp> stamps_;
  std::size_t directoryLimit_ = 0;  ///< of `stamps_`, while it is built
  std::vector<std::string> files_;

  // Each stands for a number in `files_`. Of several entries for one thing, the one that starts it with the
  // fewest arguments is the application itself.
  NameTable byId_;
  NameTable byExecutable_;
  NameTable byServiceExecutable_;
  NameTable byDirectory_;                     ///< full paths
  NameTable byDirectoryName_;                 ///< of whatever directory applications have for themselves
  std::unordered_set<std::string> knownIds_;  ///< while it is built: the first file of an id hides the others
};

}  // namespace tarn
