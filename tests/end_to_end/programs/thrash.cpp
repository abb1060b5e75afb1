// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT
//
// thrash REQUESTS FOLDER MEGABYTES PROCESSES: causes memory pressure. Reads lines from the named pipe
// REQUESTS. Each line is a number of seconds for which PROCESSES processes read an unnamed file of this size
// in FOLDER at random positions. A new request replaces the previous one; 0 stops the reading. In a cgroup
// whose memory is smaller than the file, the readers stall all the time.

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr std::size_t page = 4096;
constexpr unsigned maximumSeconds = 300;

[[noreturn]] void fail(const char* what) {
  std::perror(what);
  std::exit(1);
}

// This process writes the file, so that its pages are charged to this cgroup. Only pages that are written to
// disk (fsync) can be reclaimed.
int writeFile(const char* folder, std::size_t pages) {
  const int file = open(folder, O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
  if (file < 0) fail(folder);
  const std::vector<char> content(page, 'x');
  for (std::size_t index = 0; index < pages; ++index) {
    if (write(file, content.data(), page) != static_cast<ssize_t>(page)) fail("write");
  }
  if (fsync(file) != 0) fail("fsync");
  return file;
}

[[noreturn]] void readAtRandom(int file, std::size_t pages, unsigned seconds) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  alarm(seconds);
  const auto* const content =
      static_cast<const volatile char*>(mmap(nullptr, pages * page, PROT_READ, MAP_SHARED, file, 0));
  if (content == MAP_FAILED) fail("mmap");
  std::minstd_rand random(static_cast<unsigned>(getpid()));
  std::uniform_int_distribution<std::size_t> pageIndex(0, pages - 1);
  while (true) static_cast<void>(content[pageIndex(random) * page]);
}

void endAll(std::vector<pid_t>& readers) {
  for (const pid_t reader : readers) kill(reader, SIGKILL);
  for (const pid_t reader : readers) waitpid(reader, nullptr, 0);
  readers.clear();
}

}  // namespace

int main(int argumentCount, char** arguments) {
  if (argumentCount != 5) {
    std::fputs("usage: thrash REQUESTS FOLDER MEGABYTES PROCESSES\n", stderr);
    return 2;
  }
  const std::size_t pages = (std::strtoul(arguments[3], nullptr, 10) << 20U) / page;
  const unsigned long processes = std::strtoul(arguments[4], nullptr, 10);
  std::fstream requests(
      arguments[1],
      std::ios::in | std::ios::out);  // opened for writing too, so that reading never reaches the end of file
  if (!requests) fail(arguments[1]);
  std::vector<pid_t> readers;
  int file = -1;
  for (std::string line; std::getline(requests, line);) {
    endAll(readers);
    unsigned seconds = 0;
    std::from_chars(line.data(), line.data() + line.size(), seconds);
    if (seconds == 0) continue;
    if (file < 0) file = writeFile(arguments[2], pages);
    for (unsigned long number = 0; number < processes; ++number) {
      const pid_t reader = fork();
      if (reader == 0) readAtRandom(file, pages, std::min(seconds, maximumSeconds));
      if (reader > 0) readers.push_back(reader);
    }
  }
  return 0;
}
