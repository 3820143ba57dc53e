// A large table as a workbook: our driver and server beside the bare library in constant memory, each in a process of its own so that
// its peak memory is its own. Prints one JSON line each; exits with 1 if the two disagree.
//
//   bench_workbook [rows=100000] [rounds=3] [out=FOLDER]
#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xlsxwriter.h>

#include "doubles/fake_host.h"
#include "platform/utf8.h"
#include "services/excel_driver.h"
#include "workbook/workbook_server.h"

namespace {

struct TableRow {
  std::array<std::string, 3> text;
  std::array<double, 7> value;
};

/// Rows of surveyed points with numbers of three decimals, by integer arithmetic.
TableRow tableRow(std::uint32_t r) {
  static constexpr std::array<const char*, 8> kCodes = {"EDGE",  "AXIS", "KERB", "DITCH",
                                                        "FENCE", "TREE", "WALL", "SPOT"};
  const auto milli = [r](std::uint64_t factor, std::uint64_t range) {
    return static_cast<double>((r * factor + 12345) % range) / 1000.0;
  };
  return {{"PT-" + std::to_string(100000 + r), kCodes[r * 7 % 8], "survey point " + std::to_string(r % 1000)},
          {milli(1, 10000000), milli(7919, 160000) - 80, 4810000 + milli(104729, 2000000),
           480000 + milli(1299709, 10000000), 200 + milli(15485863, 100000), milli(32452843, 60000) - 30,
           static_cast<double>(r)}};
}

double writeByLibrary(const std::string& path, std::uint32_t rows) {
  lxw_workbook_options options{LXW_TRUE, nullptr, LXW_FALSE};
  lxw_workbook* book = workbook_new_opt(path.c_str(), &options);
  lxw_worksheet* sheet = workbook_add_worksheet(book, "Points");
  double sum = 0;
  for (std::uint32_t r = 0; r < rows; ++r) {
    const TableRow row = tableRow(r);
    for (std::uint16_t c = 0; c < 3; ++c) worksheet_write_string(sheet, r, c, row.text[c].c_str(), nullptr);
    for (std::uint16_t c = 0; c < 7; ++c) {
      worksheet_write_number(sheet, r, static_cast<lxw_col_t>(c + 3), row.value[c], nullptr);
      sum += row.value[c];
    }
  }
  if (workbook_close(book) != LXW_NO_ERROR) std::exit(1);
  return sum;
}

/// As a report's writer does it: names and numbers as texts, through the driver's four operations and the automation
/// calls behind them.
double writeByDriver(const std::string& path, std::uint32_t rows) {
  lvx::test::FakeHost host;
  host.setAutomationFactory([](const lvx::host::CString&) { return lvx::workbook::startWorkbookServer(); });
  lvx::services::ExcelLink link;
  if (!lvx::services::startExcel(link)) std::exit(1);
  double sum = 0;
  for (std::uint32_t r = 0; r < rows; ++r) {
    const TableRow row = tableRow(r);
    const int number = static_cast<int>(r) + 1;
    for (std::size_t c = 0; c < 3; ++c)
      lvx::services::writeCell(link, lvx::services::cellName(static_cast<wchar_t>(L'A' + c), number),
                               std::wstring(row.text[c].begin(), row.text[c].end()));
    for (std::size_t c = 0; c < 7; ++c) {
      std::array<char, 32> digits;
      const auto end =
          std::to_chars(digits.data(), digits.data() + digits.size(), row.value[c], std::chars_format::fixed, 3).ptr;
      lvx::services::writeNumberCell(link, lvx::services::cellName(static_cast<wchar_t>(L'D' + c), number),
                                     std::wstring(digits.data(), end));
      sum += row.value[c];
    }
  }
  lvx::services::finishExcel(link, lvx::platform::fromUtf8(path));
  return sum;
}

struct Outcome {
  double seconds = 0;
  double sum = 0;
  double rssMb = 0;
  double cpuSeconds = 0;  ///< of the process: on a machine that others use too, steadier than the time on the wall
};

/// Runs `write` in a child process, so that each candidate's peak memory is measured by itself.
template <class Write>
Outcome run(Write write) {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) std::exit(1);
  const auto begin = std::chrono::steady_clock::now();
  const pid_t child = fork();
  if (child < 0) std::exit(1);
  if (child == 0) {
    const double sum = write();
    const bool told = ::write(ends[1], &sum, sizeof sum) == static_cast<ssize_t>(sizeof sum);
    _exit(told ? 0 : 1);
  }
  Outcome outcome;
  close(ends[1]);
  const bool heard = read(ends[0], &outcome.sum, sizeof outcome.sum) == static_cast<ssize_t>(sizeof outcome.sum);
  close(ends[0]);
  int status = 0;
  rusage usage{};
  if (wait4(child, &status, 0, &usage) != child || status != 0 || !heard) {
    std::fprintf(stderr, "bench_workbook: a candidate failed\n");
    std::exit(1);
  }
  outcome.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  const auto secondsOf = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  outcome.cpuSeconds = secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime);
  outcome.rssMb = static_cast<double>(usage.ru_maxrss) / 1024.0;
  return outcome;
}

Outcome median(std::vector<Outcome> all) {
  std::sort(all.begin(), all.end(), [](const Outcome& a, const Outcome& b) { return a.seconds < b.seconds; });
  return all[all.size() / 2];
}

void print(const char* peer, std::uint32_t rows, const Outcome& outcome, const std::string& path) {
  std::printf(
      "{\"peer\": \"%s\", \"task\": \"xlsx\", \"data\": \"%u x 10\", \"rows\": %u, \"seconds\": %.6g, "
      "\"rows_per_s\": %.6g, \"cpu_s\": %.6g, \"file_mb\": %.6g, \"sum_numbers\": %.12g, \"rss_mb\": %.5g}\n",
      peer, rows, rows, outcome.seconds, rows / outcome.seconds, outcome.cpuSeconds,
      static_cast<double>(std::filesystem::file_size(path)) / 1e6, outcome.sum, outcome.rssMb);
}

std::uint32_t countOf(std::string_view text) {
  std::uint32_t value = 0;
  const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || rest != text.data() + text.size() || value == 0) {
    std::fprintf(stderr, "usage: bench_workbook [rows=100000] [rounds=3] [out=FOLDER]\n");
    std::exit(2);
  }
  return value;
}

}  // namespace

int main(int argc, char** argv) {
  std::uint32_t rows = 100000;
  std::uint32_t rounds = 3;
  std::string folder = std::filesystem::temp_directory_path();
  for (int i = 1; i < argc; ++i) {
    const std::string_view argument = argv[i];
    if (argument.starts_with("out=")) {
      folder = argument.substr(4);
    } else if (argument.starts_with("rounds=")) {
      rounds = countOf(argument.substr(7));
    } else {
      rows = countOf(argument.starts_with("rows=") ? argument.substr(5) : argument);
    }
  }
  const std::string ours = folder + "/lvx_bench_workbook_ours.xlsx";
  const std::string theirs = folder + "/lvx_bench_workbook_bare.xlsx";
  std::vector<Outcome> our;
  std::vector<Outcome> their;
  for (std::uint32_t round = 0; round < rounds; ++round) {
    their.push_back(run([&] { return writeByLibrary(theirs, rows); }));
    our.push_back(run([&] { return writeByDriver(ours, rows); }));
  }
  const Outcome a = median(our);
  const Outcome b = median(their);
  print("lvx_workbook", rows, a, ours);
  print("libxlsxwriter_constant", rows, b, theirs);
  std::printf("ratio %.3f (at most 0.75), peak %.1f MB (under 50)\n", a.seconds / b.seconds, a.rssMb);
  std::filesystem::remove(ours);
  std::filesystem::remove(theirs);
  return a.sum == b.sum ? 0 : 1;
}
