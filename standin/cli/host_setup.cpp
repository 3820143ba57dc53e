#include "cli/host_setup.h"

#include <stdexcept>

#include "cli/failure.h"
#include "cli/terminal.h"
#include "standin_platform/interruption.h"

namespace lvx::cli {

std::unique_ptr<runtime::StandinHost> makeHost(runtime::FrontEnd& frontEnd, const options::CommonOptions& options,
                                               const runtime::InputFiles& inputs) {
  try {
    runtime::HostOptions setup = runtime::hostOptions(options.host);
    setup.workbookThreads = static_cast<unsigned>(options.threads.value_or(0));
    setup.inputs.add(inputs);
    setup.isInterrupted = standin_platform::isInterrupted;
    setup.startProgress = [mode = options.progressMode()](const std::string& work) {
      return [line = std::make_shared<ProgressLine>(mode, work)](std::uint64_t done, std::uint64_t total) {
        line->update(done, total);
      };
    };
    return std::make_unique<runtime::StandinHost>(frontEnd, std::move(setup));
  } catch (const std::invalid_argument& error) {
    throw Failure(kUsage, error.what());
  }
}

}  // namespace lvx::cli
