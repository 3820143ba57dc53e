// A whole report of each kind from any drawing, by the command line's own functions, over the module itself. The first byte
// says which alignment, profile and surface; behind it stands the drawing. Whatever comes out is an exit code or a Failure;
// with kDone all forms stand there, and nothing else ever lies in the folder.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <dlfcn.h>

#include "cli/failure.h"
#include "cli/report_commands.h"
#include "landxml/reader.h"
#include "options/options.h"
#include "scratch_folder.h"

namespace {

using namespace lvx;

const std::filesystem::path& binFolder() {
  static const std::filesystem::path bin =
      std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path() / "bin";
  return bin;
}

options::Options common(const fuzz::ScratchFolder& folder) {
  options::Options options;
  options.drawing = folder.file("road.xml");
  options.common.overwrite = true;
  options.common.progress = "never";
  options.common.host.bin = binFolder();
  options.report.stem = folder.file("report");
  return options;
}

void report(const fuzz::ScratchFolder& folder, options::Command command, const options::Options& options) {
  try {
    cli::ReportRun run;
    const options::ExitCode code = cli::runReportCommand(command, options, run);
    if (code == options::kException) return;
    for (const char* ending : {".txt", ".xls", ".html"})
      if (code == options::kDone && !std::filesystem::exists(options.report.stem + ending)) std::abort();
  } catch (const cli::Failure&) {
    // Its words are for people.
  }
  for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
    if (entry.path().filename().string().front() == '.') std::abort();
    if (entry.path().stem() == "report") std::filesystem::remove(entry.path());
  }
}

template <class List>
const auto& oneOf(const List& list, unsigned which) {
  return list[which % list.size()];
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  static const fuzz::ScratchFolder folder;
  // The fuzzer's counters of the module are read after it is gone; so it stays.
  static const bool staysLoaded = [] {
    for (const char* name : {"LVX_MIRELLIB.vmx", "LVX_MirelReport.vmx"})
      if (::dlopen((binFolder() / name).c_str(), RTLD_NOW | RTLD_NODELETE) == nullptr) return false;
    return true;
  }();
  if (!staysLoaded) std::abort();
  // What commands say about each drawing is for people too.
  static const bool isSilent = [] {
    return std::freopen("/dev/null", "w", stdout) != nullptr && setenv("SOURCE_DATE_EPOCH", "0", 1) == 0;
  }();
  if (!isSilent) std::abort();
  const unsigned how = *data;
  const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
  civil::Drawing drawing;
  try {
    drawing = landxml::readDrawingText(text, "road.xml");
  } catch (const landxml::ReadError&) {
    return 0;
  }
  std::vector<const civil::AlignmentObject*> alignments;
  for (const auto& alignment : drawing.siteless.alignments) alignments.push_back(alignment.get());
  for (const auto& site : drawing.sites)
    for (const auto& alignment : site.alignments) alignments.push_back(alignment.get());
  if (alignments.empty()) return 0;
  fuzz::writeFile(folder.file("road.xml"), text);

  const civil::AlignmentObject& alignment = *oneOf(alignments, how);
  // A road around the world takes its time; the number of lines isn't what is looked for.
  constexpr double kLongest = 1e6;
  if (!(alignment.geometry.length() < kLongest)) return 0;
  options::Options options = common(folder);
  options.report.alignment = alignment.name;
  if (!alignment.sampleLineGroups.empty() && how % 2 == 0)
    options.report.group = oneOf(alignment.sampleLineGroups, how / 4).name;
  else
    options.report.lines = "stations=" + std::to_string(static_cast<long>(alignment.geometry.startStation()) + 1) +
                           ",ends,left=10,right=10";
  if (!drawing.surfaces.empty()) {
    options.report.surface = oneOf(drawing.surfaces, how / 2).name;
    report(folder, options::Command::Projection, options);
  }
  if (!alignment.profiles.empty()) {
    options.report.profile = oneOf(alignment.profiles, how / 2).name;
    options.report.addSections = how % 3 == 0;
    report(folder, options::Command::Gls, options);
    options.report.addSections = false;
  }
  if (!drawing.points.empty()) {
    options.report.group.reset();
    options.report.lines.reset();
    options.report.points.numbers = "all";
    report(folder, options::Command::Points, options);
  }
  return 0;
}
