// The module's two exports, its commands and its static objects.

#include <array>
#include <cstdint>

#include "frame/applications.h"
#include "frame/document_data.h"
#include "frame/module_library.h"
#include "gls/gls_command.h"
#include "host/roadway_connection.h"
#include "points/points_command.h"
#include "projection/projection_command.h"
#include "services/message_catalogue.h"

#define LVX_MODULE_EXPORT extern "C" __attribute__((visibility("default")))

namespace lvx::frame {
namespace {

/// The interface version that the module is built against.
constexpr std::uint32_t kApiVersion = 0x180000;

/// Its address names this file among the loaded ones.
constexpr char kInstance = 0;

void reportQue();
void reportPoints();
void reportGls();

constexpr std::uint32_t kModalCommand = 1;

constexpr CommandEntry kReportQue{L"lvx_", L"Report_Que", L"lvx_Report_Que", kModalCommand, &reportQue, nullptr, 0};
constexpr CommandEntry kReportPoints{
    L"lvx_", L"Report_Points", L"lvx_Report_Points", kModalCommand, &reportPoints, nullptr, 0};
constexpr CommandEntry kReportGls{L"lvx_", L"Report_GLS", L"lvx_Report_GLS", kModalCommand, &reportGls, nullptr, 0};

// The last slot of each table stays empty: readers walk the whole store and skip what isn't filled.
constexpr std::array<const CommandEntry*, 4> kCommands{&kReportQue, &kReportPoints, &kReportGls, nullptr};
constexpr std::array<const ScriptingEntry*, 1> kScripting{nullptr};
constexpr std::array<ClassEntry*, 1> kClasses{nullptr};

/// Text resources by number.
struct TextResource {
  std::uint32_t id;
  const wchar_t* text;
};
constexpr std::array<TextResource, 1> kTexts{{{100, L"LVX_MirelReport"}}};

class CLVX_MirelReportApp final : public VnRxVmxApp {
 public:
  constexpr CLVX_MirelReportApp() : VnRxVmxApp(true, true) {}
  void registerServerComponents() override {}

 private:
  [[nodiscard]] host::Host* host() const override { return vnrxHost(); }
  [[nodiscard]] ModuleTables tables() const override { return {kCommands, kScripting, kClasses}; }
  [[nodiscard]] framework::ResourceHandle moduleInstance() const override { return &kInstance; }
  [[nodiscard]] const wchar_t* resourceText(std::uint32_t id) const override {
    for (const TextResource& resource : kTexts)
      if (resource.id == id) return resource.text;
    return nullptr;
  }
};

/// What a command leaves to the module's unloading.
struct ModuleWideReferences {
  /// Touches all once, so that they are built before this object and still stand when it is destroyed.
  ModuleWideReferences() {
    static_cast<void>(vnrxHost());
    letGo();
  }
  ModuleWideReferences(const ModuleWideReferences&) = delete;
  ModuleWideReferences& operator=(const ModuleWideReferences&) = delete;
  ~ModuleWideReferences() { letGo(); }

 private:
  static void letGo() {
    host::disconnectRoadway();
    services::releaseMessages();
  }
};

// Built in this order when the library is attached, destroyed in the opposite one when it is detached.
CLVX_MirelReportApp application;
ModuleWideReferences references;
VnApDataManager<CDocData> documentData(vnrxHost());
ModuleLibrary library(vnrxHost(), &kInstance);

void reportQue() { runInCommandFrame(library, projection::runProjectionReport); }
void reportPoints() { runInCommandFrame(library, points::runPointsReport); }
void reportGls() { runInCommandFrame(library, gls::runGlsReport); }

}  // namespace
}  // namespace lvx::frame

/// The host's messages; `appId` is the host's own name for this module.
LVX_MODULE_EXPORT std::int32_t vnrxEntryPoint(std::uint32_t message, void* appId) {
  return lvx::frame::application.dispatch(message, appId);
}

/// The interface version that this module was built against, also stored in `value` where that isn't null.
LVX_MODULE_EXPORT std::uint32_t vnrxGetApiVersion(std::uint32_t* value) {
  if (value != nullptr) *value = lvx::frame::kApiVersion;
  return lvx::frame::kApiVersion;
}
