#include <algorithm>
#include <filesystem>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/places.h"
#include "support/run_program.h"

namespace lvx {
namespace {

namespace fs = std::filesystem;

/// Folders that answer for a system.
constexpr const char* kSystemFolders[] = {"src/platform/posix/", "src/platform/windows/", "standin/platform/posix/",
                                          "standin/platform/windows/"};

/// Files elsewhere that use a system's own header, each with the reason.
const std::map<std::string, std::set<std::string>> kExceptions = {
    // Hears of a closing window on X11 before the toolkit does; built only where that library is found.
    {"standin/desktop/shell/close_watch.cpp", {"xcb/xcb.h"}},
};

/// Headers of a system, next to those of the languages and of our libraries.
const std::regex kSystemHeader(
    "(sys|linux|arpa|net|netinet|asm|bits|xcb|X11|mach)/.*|"
    "(aio|dirent|dlfcn|elf|err|execinfo|fcntl|fnmatch|ftw|glob|grp|iconv|langinfo|libgen|link|locale|malloc|mqueue|"
    "netdb|"
    "nl_types|paths|poll|pthread|pty|pwd|sched|semaphore|signal|spawn|strings|syslog|termios|ucontext|unistd|utime|"
    "utmpx|"
    "wordexp|windows|winsock2|io|direct|process|conio)\\.h");

/// Functions and files of a system that can be reached without a header of its own.
const std::regex kSystemWord(
    "\\b(fileno|fdopen|fseeko|ftello|fopencookie|fmemopen|popen|pclose|setenv|unsetenv|putenv|realpath|mkstemp|"
    "mkostemp|"
    "mkdtemp|isatty|getpid|strerror_r|localtime_r|gmtime_r|tzset|newlocale|uselocale|freelocale|sigaction|"
    "dlopen|"
    "dlsym|iconv|iconv_open|fsync|mmap|flock|lockf|waitpid|execv|fork|kill|pipe2?|environ|tmpfile)\\s*\\(|"
    "(^|[^:])\\bgetline\\s*\\(|/proc/|/dev/|\\benviron\\b");  // std::getline is the language's

std::vector<fs::path> sourcesBelow(const fs::path& folder) {
  std::vector<fs::path> sources;
  for (const auto& entry : fs::recursive_directory_iterator(folder))
    if (entry.path().extension() == ".h" || entry.path().extension() == ".cpp") sources.push_back(entry.path());
  std::sort(sources.begin(), sources.end());
  return sources;
}

/// Lines without what stands behind "//".
std::vector<std::string> codeLines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line.substr(0, line.find("//")));
  return lines;
}

std::string systemHeaderOf(const std::string& line) {
  static const std::regex include("^\\s*#\\s*include\\s*[<\"]([^>\"]+)[>\"]");
  std::smatch match;
  if (!std::regex_search(line, match, include)) return {};
  std::string header = match[1];
  return std::regex_match(header, kSystemHeader) ? header : std::string();
}

TEST(SystemFence, KnowsASystemsHeaderAndWordWhenItSeesThem) {
  for (const char* line :
       {"#include <unistd.h>", "# include <sys/stat.h>", "#include <iconv.h>", "#include <xcb/xcb.h>"})
    EXPECT_NE(systemHeaderOf(line), "") << line;
  for (const char* line :
       {"#include <cstdio>", "#include <string>", "#include \"civil/alignment.h\"", "#include <xlsxwriter.h>"})
    EXPECT_EQ(systemHeaderOf(line), "") << line;
  for (const char* line : {"  fd = ::fileno(stream);", "fs::read_symlink(\"/proc/self/exe\")", "ftello (file)"})
    EXPECT_TRUE(std::regex_search(line, kSystemWord)) << line;
  for (const char* line : {"profileno(3);", "std::getline_count", "road.kill_radius(", "stockpile(2)"})
    EXPECT_FALSE(std::regex_search(line, kSystemWord)) << line;
}

TEST(SystemFence, OnlyThePlatformFoldersCallTheSystem) {
  const fs::path root = test::inSource("");
  std::size_t looked = 0;
  std::map<std::string, std::set<std::string>> used;
  for (const char* part : {"src", "standin"}) {
    for (const fs::path& source : sourcesBelow(root / part)) {
      const std::string name = source.lexically_relative(root).generic_string();
      if (std::any_of(std::begin(kSystemFolders), std::end(kSystemFolders),
                      [&](const char* folder) { return name.starts_with(folder); }))
        continue;
      ++looked;
      std::size_t number = 0;
      for (const std::string& line : codeLines(test::fileBytes(source))) {
        ++number;
        if (const std::string header = systemHeaderOf(line); !header.empty()) {
          used[name].insert(header);
          const auto exception = kExceptions.find(name);
          EXPECT_TRUE(exception != kExceptions.end() && exception->second.contains(header))
              << name << ':' << number << ": " << header << " belongs into a platform folder";
        }
        EXPECT_FALSE(std::regex_search(line, kSystemWord))
            << name << ':' << number << ": belongs into a platform folder: " << line;
      }
    }
  }
  EXPECT_GT(looked, 150U) << "the tree isn't where the test looks for it";
  EXPECT_EQ(used, kExceptions) << "an exception that nobody needs any more";
}

}  // namespace
}  // namespace lvx
