#include "frame/module_library.h"

#include <gtest/gtest.h>

#include "doubles/fake_host.h"
#include "framework/exceptions.h"

namespace lvx::frame {
namespace {

constexpr char kInstance = 0;
constexpr char kOther = 0;

TEST(ModuleLibrary, JoinsTheFrameworkWhenAttachedAndLeavesItWhenDetached) {
  test::FakeHost host;
  host.moduleState().setResourceHandle(&kOther);
  {
    const ModuleLibrary library(&host, &kInstance);
    EXPECT_TRUE(library.isAttached());
    EXPECT_EQ(library.defaultResource(), &kOther);
    EXPECT_EQ(library.moduleResource(), &kInstance);
    EXPECT_EQ(host.moduleState().attachedModules(), 1U);
    EXPECT_EQ(host.moduleState().chainedLibraries(), 1U);
  }
  EXPECT_EQ(host.moduleState().attachedModules(), 0U);
  EXPECT_EQ(host.moduleState().chainedLibraries(), 0U);
}

TEST(ModuleLibrary, StaysUnattachedWhereTheFrameworkRefuses) {
  test::FakeHost host;
  ASSERT_TRUE(host.moduleState().initExtensionModule(&kInstance));
  {
    const ModuleLibrary library(&host, &kInstance);
    EXPECT_FALSE(library.isAttached());
    EXPECT_EQ(library.moduleResource(), nullptr);
    EXPECT_EQ(host.moduleState().chainedLibraries(), 0U);
  }
  EXPECT_EQ(host.moduleState().attachedModules(), 1U) << "an unattached library doesn't terminate the other one";
}

TEST(ModuleLibrary, LivesWithoutAHost) {
  const ModuleLibrary library(nullptr, &kInstance);
  EXPECT_FALSE(library.isAttached());
  runInCommandFrame(library, [](host::Host&) { FAIL() << "there is nobody to run a command for"; });
}

TEST(CommandFrame, HasTheModulesResourcesInForceAndPutsTheFormerOnesBack) {
  test::FakeHost host;
  const ModuleLibrary library(&host, &kInstance);
  host.moduleState().setResourceHandle(&kOther);
  bool ran = false;
  runInCommandFrame(library, [&ran](host::Host& inside) {
    ran = true;
    EXPECT_EQ(inside.moduleState().resourceHandle(), &kInstance);
  });
  EXPECT_TRUE(ran);
  EXPECT_EQ(host.moduleState().resourceHandle(), &kOther);
}

TEST(CommandFrame, PutsTheFormerResourcesBackWhenTheCommandRaises) {
  test::FakeHost host;
  const ModuleLibrary library(&host, &kInstance);
  host.moduleState().setResourceHandle(&kOther);
  EXPECT_THROW(runInCommandFrame(library, [](host::Host&) { throw framework::InvalidArgumentException(); }),
               framework::InvalidArgumentException);
  EXPECT_EQ(host.moduleState().resourceHandle(), &kOther);
}

}  // namespace
}  // namespace lvx::frame
