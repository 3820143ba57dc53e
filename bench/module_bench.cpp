// What the module boundary costs: loading and unloading the module, and the projection report of the example through the
// module's command against the same collection, computation and writers called straight in this process.
//
//   bench_module [rounds=31]
//
// Both ways must write the same bytes; exits with 1 where they don't. Rounds alternate, so that a busy machine slows both.
#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "cli/command_line_front_end.h"
#include "host/dialog_controls.h"
#include "landxml/reader.h"
#include "platform/utf8.h"
#include "projection/projection_ascii.h"
#include "projection/projection_computation.h"
#include "projection/projection_excel.h"
#include "projection/projection_html.h"
#include "projection/sample_line_collector.h"
#include "runtime/command_runner.h"
#include "runtime/model_objects.h"
#include "runtime/standin_host.h"

namespace {

using namespace lvx;

constexpr const wchar_t* kSite = L"Valley road upgrade";
constexpr const wchar_t* kAlignment = L"Valley road";
constexpr const wchar_t* kGroup = L"Cross sections 20 m";
constexpr const wchar_t* kSurface = L"Existing ground";

double seconds(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

std::string bytesOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<cli::DialogStep> answers(const std::string& stem) {
  using Kind = cli::DialogStep::Kind;
  return {{Kind::SelectRow, host::kIdSites, 1, kSite},
          {Kind::SelectRow, host::kIdAlignments, 0, kAlignment},
          {Kind::SelectRow, host::kIdSampleLineGroups, 0, kGroup},
          {Kind::SelectRow, host::kIdSurfaces, 0, kSurface},
          {Kind::Type, host::kIdOutputStem, 0, platform::fromUtf8(stem)},
          {Kind::Click, host::kIdOk, 0, {}}};
}

void reportDirectly(runtime::StandinHost& host, const std::string& stem) {
  const host::CString wide = platform::fromUtf8(stem);
  framework::OwnedList<projection::tsl> records;
  const auto document = runtime::makeDocument(host.openDrawing());
  projection::collectSampleLines(document, runtime::makeDatabase(host.openDrawing()), kSite, kAlignment,
                                 projection::GroupFilter::named(kGroup), records.get());
  projection::projectSampleLines(document, kSurface, records.get());
  projection::writeProjectionAscii(wide + L".txt", kAlignment, records.get());
  host.platform().removeFile(wide + L".xls");
  projection::writeProjectionExcel(wide + L".xls", kAlignment, records.get());
  projection::writeProjectionHtml(wide + L".html", kAlignment, records.get());
}

int run(int rounds) {
  std::printf("compiler %s, flags %s\n", LVX_COMPILER, LVX_FLAGS);
  std::ifstream info("/proc/cpuinfo");
  for (std::string line; std::getline(info, line);)
    if (line.starts_with("model name")) {
      std::printf("processor%s\n", line.substr(line.find(':')).c_str());
      break;
    }

  cli::CommandLineFrontEnd frontEnd(cli::Overwrite::Always, {});
  runtime::HostOptions options;
  options.platform.fixedMoment = 0;
  options.supportPaths = {LVX_SOURCE_DIR "/messages/en"};
  runtime::StandinHost host(frontEnd, options);
  host.open(landxml::readDrawing(LVX_SOURCE_DIR "/examples/valley-road.xml"));

  std::vector<double> loads;
  for (int i = 0; i < rounds; ++i)
    loads.push_back(seconds([&host] { const auto module = host.loadModule(LVX_BIN_DIR "/LVX_MirelReport.vmx"); }));
  std::printf("load and unload the module: %.3f ms (median of %d)\n", median(loads) * 1e3, rounds);

  const auto folder = std::filesystem::temp_directory_path() / ("lvx-bench-module-" + std::to_string(std::rand()));
  std::filesystem::create_directory(folder);
  const std::string stem = (folder / "road").string();
  const auto module = host.loadModule(LVX_BIN_DIR "/LVX_MirelReport.vmx");
  runtime::CommandRunner runner(host, false);

  std::vector<double> direct;
  std::vector<double> through;
  bool same = true;
  for (int i = 0; i < rounds; ++i) {
    direct.push_back(seconds([&] { reportDirectly(host, stem); }));
    const std::string text = bytesOf(stem + ".txt");
    const std::string page = bytesOf(stem + ".html");
    frontEnd.steps().expect(host::kProjectionDialog, {answers(stem)});
    through.push_back(seconds([&] { same = !runner.run(L"lvx_Report_Que").exception && same; }));
    same = same && !text.empty() && text == bytesOf(stem + ".txt") && page == bytesOf(stem + ".html");
  }
  std::filesystem::remove_all(folder);
  std::printf("report of the example, called straight: %.3f ms\n", median(direct) * 1e3);
  std::printf("report of the example, through the module's command and dialog: %.3f ms\n", median(through) * 1e3);
  std::printf("ratio: %.3f\n", median(through) / median(direct));
  if (!same) std::printf("the two ways don't write the same bytes\n");
  return same ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  int rounds = 31;
  if (argc > 1) {
    const std::string_view argument(argv[1]);
    const std::size_t value = argument.find('=') + 1;
    std::from_chars(argument.data() + value, argument.data() + argument.size(), rounds);
  }
  return run(std::max(rounds, 1));
}
