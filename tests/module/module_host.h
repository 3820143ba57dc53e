#pragma once

#include <exception>
#include <optional>
#include <string>
#include <vector>

#include "landxml/reader.h"
#include "platform/utf8.h"
#include "runtime/command_runner.h"
#include "runtime/module_loader.h"
#include "runtime/standin_host.h"
#include "script/script_front_end.h"
#include "support/places.h"

namespace lvx::test {

/// A drawing small enough to read in a test: one alignment of 100 units to the east in site "S" with a group of two
/// lines, and a flat surface at 100 around its start.
inline const char* const kSmallDrawing = R"(<?xml version="1.0"?>
<LandXML xmlns="http://www.landxml.org/schema/LandXML-1.2" version="1.2">
<Units><Metric linearUnit="meter" areaUnit="squareMeter" volumeUnit="cubicMeter" temperatureUnit="celsius" pressureUnit="HPA"/></Units>
<Alignments name="S"><Alignment name="A" length="100" staStart="0"><CoordGeom><Line><Start>0 0</Start><End>0 100</End></Line></CoordGeom>
<CrossSects name="g">
<CrossSect sta="10" name="L10"><CrossSectSurf name="x"><PntList2D>-5 0 5 0</PntList2D></CrossSectSurf></CrossSect>
<CrossSect sta="20" name="L20"><CrossSectSurf name="x"><PntList2D>-5 0 5 0</PntList2D></CrossSectSurf></CrossSect>
</CrossSects></Alignment></Alignments>
<Surfaces><Surface name="ground"><Definition surfType="TIN"><Pnts><P id="1">-20 0 100</P><P id="2">20 0 100</P><P id="3">20 40 100</P><P id="4">-20 40 100</P></Pnts>
<Faces><F>1 2 3</F><F>1 3 4</F></Faces></Definition></Surface></Surfaces>
</LandXML>)";

/// A stand-in host over the small drawing that a script works. The transcript's lines are kept. `Host` may be a class
/// derived from the stand-in host that fails in some operation.
template <class Host>
class ModuleHostOf {
 public:
  explicit ModuleHostOf(const std::string& script = "[]", bool checks = true)
      : transcript_([this](std::string_view line) { lines.emplace_back(line); }),
        frontEnd_(script::parseScript(script, "script"), transcript_),
        host(frontEnd_, options()),
        runner(host, checks) {
    host.open(landxml::readDrawingText(kSmallDrawing, "small.xml"));
    frontEnd_.setDrawing(&host.openDrawing()->drawing());
  }

  /// Runs every command of the script; what they did wrong.
  std::vector<std::string> playAll() {
    std::vector<std::string> misuse;
    while (const auto command = frontEnd_.nextCommand()) {
      const runtime::CommandOutcome outcome = runner.run(platform::fromUtf8(*command));
      if (!outcome.found) misuse.push_back("no command " + *command);
      if (outcome.exception) lastException = outcome.exception;
      if (outcome.raisedByHost) lastRaisedByHost = outcome.raisedByHost;
      misuse.insert(misuse.end(), outcome.misuse.begin(), outcome.misuse.end());
    }
    return misuse;
  }

  std::vector<std::string> lines;
  std::optional<runtime::ModuleException> lastException;
  std::exception_ptr lastRaisedByHost;

 private:
  static runtime::HostOptions options() {
    runtime::HostOptions options;
    options.platform.fixedMoment = 0;
    options.supportPaths = {test::inSource("/messages/en")};
    return options;
  }

  script::Transcript transcript_;
  script::ScriptFrontEnd frontEnd_;

 public:
  Host host;
  runtime::CommandRunner runner;
};

using ModuleHost = ModuleHostOf<runtime::StandinHost>;

inline const std::string kModuleFile = test::inBuild("/bin/LVX_MirelReport.vmx");

}  // namespace lvx::test
