// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "platform/linux/app_identity/desktop_entry.hpp"
#include "platform/linux/procfs/linux_roots.hpp"

namespace tarn {

/// A map from names to numbers that needs little memory: one string and one sorted vector. Call `add` for
/// every name, then `finish`, then `find`.
class NameTable {
 public:
  void clear();

  /// If a name is added several times, the number with the lowest rank is kept; if ranks are equal, the
  /// number that was added first.
  void add(std::string_view name, std::uint32_t number, std::uint32_t rank);

  void finish();

  std::optional<std::uint32_t> find(std::string_view name) const;

 private:
  struct Entry {
    std::uint32_t offset = 0;  ///< of the name in `names_`
    std::uint32_t length = 0;
    std::uint32_t number = 0;
    std::uint32_t rank = 0;
  };

  std::string_view nameOf(const Entry& entry) const {
    return std::string_view(names_).substr(entry.offset, entry.length);
  }

  std::string names_;  ///< all names, concatenated
  std::vector<Entry> entries_;
};

/// The installed desktop applications, found by the properties that identify their processes. An application
/// is represented by the path of its desktop file. Used on one thread.
///
/// Desktop files are those in "applications" below each data directory (XDG Base Directory Specification).
/// The first file of a desktop id hides the files of that id in later directories (Desktop Entry
/// Specification).
class ApplicationIndex {
 public:
  /// `dataDirectories`: highest precedence first. `programDirectories`: searched for programs that an Exec
  /// key names without a directory. No file is read before the first `refresh`.
  ApplicationIndex(LinuxRoots roots, std::vector<std::string> dataDirectories,
                   std::vector<std::string> programDirectories);

  /// Builds the index if it is not built yet or one of its directories has changed. Returns true if it built
  /// the index; pointers from earlier lookups are then invalid.
  bool refresh();

  // Lookups. They return the path of a desktop file, valid until the index is built again, or null.

  const std::string* byId(std::string_view id) const;

  /// The application whose Exec key starts this executable.
  const std::string* byExecutable(const std::string& path) const;

  /// The application with the name of the D-Bus service that this executable implements.
  const std::string* byServiceExecutable(const std::string& path) const;

  /// The application whose private directory (such as /usr/lib/NAME or /opt/NAME) contains `path`; the
  /// innermost such directory decides.
  const std::string* byPrivateDirectory(std::string_view path) const;

  /// Number of applications.
  std::size_t size() const { return files_.size(); }

  /// Number of directories that `refresh` checks for changes.
  std::size_t watchedDirectoryCount() const { return watchedDirectories_.size(); }

 private:
  /// Identity and modification time of a directory; all zero if it does not exist.
  struct DirectoryState {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t modifiedSeconds = 0;
    std::int64_t modifiedNanoseconds = 0;

    bool isSameDirectory(const DirectoryState& other) const {
      return device == other.device && inode == other.inode;
    }
    bool operator==(const DirectoryState&) const = default;
  };
  struct WatchedDirectory {
    std::string path;
    DirectoryState state;
  };

  void build();
  void addDirectory(const std::string& directory, const std::string& idPrefix, int depth);
  void addFile(const std::string& path, std::string id);
  void addExecutable(const DesktopEntry& entry, const std::string& id, std::uint32_t fileIndex);
  void addServices(const std::string& directory);
  std::string resolveProgram(const std::string& program) const;
  const std::string* findFile(const NameTable& names, std::string_view name) const;
  static DirectoryState readState(const std::string& directory);

  LinuxRoots roots_;
  std::vector<std::string> dataDirectories_;
  std::vector<std::string> programDirectories_;
  bool isBuilt_ = false;
  std::vector<WatchedDirectory> watchedDirectories_;
  std::size_t directoryLimit_ = 0;  ///< maximum of `watchedDirectories_.size()` during a build
  std::vector<std::string> files_;  ///< paths of the desktop files

  // The numbers are indexes into `files_`, the ranks are numbers of arguments: of several entries that start
  // the same program, the entry with the fewest arguments represents the application; the other entries are
  // its actions.
  NameTable byId_;
  NameTable byExecutable_;
  NameTable byServiceExecutable_;
  NameTable byDirectory_;                     ///< full paths
  NameTable byDirectoryName_;                 ///< last component of a private directory
  std::unordered_set<std::string> knownIds_;  ///< used only during a build
};

}  // namespace tarn
