#include <filesystem>
#include <fstream>

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "module_host.h"
#include "platform/utf8.h"
#include "support/places.h"
#include "support/run_program.h"

namespace lvx {
namespace {

using runtime::LoadedModule;
using runtime::ModuleError;
using testing::HasSubstr;
using testing::IsEmpty;

/// What the loader says of a file.
std::string wordsFor(const std::filesystem::path& file) {
  try {
    const LoadedModule module = LoadedModule::load(file);
  } catch (const ModuleError& error) {
    return error.what();
  }
  return "loaded";
}

bool isInMemory(const char* file) {
  void* library = dlopen(file, RTLD_NOLOAD | RTLD_NOW);
  if (library != nullptr) dlclose(library);
  return library != nullptr;
}

std::vector<std::string> commandNames(runtime::StandinHost& host) {
  std::vector<std::string> names;
  for (const auto& command : host.commands().commands()) names.push_back(platform::toUtf8(command.localName));
  return names;
}

TEST(ModuleLoader, RegistersTheThreeCommandsInOrderAndReadsNoFileForThat) {
  test::ModuleHost process;
  int asked = 0;
  process.host.standinRunTime().callObserver = [&asked](const char*) { ++asked; };
  const LoadedModule module = LoadedModule::load(test::kModuleFile);
  EXPECT_THAT(commandNames(process.host),
              testing::ElementsAre("lvx_Report_Que", "lvx_Report_Points", "lvx_Report_GLS"));
  const runtime::RegisteredCommand* command = process.host.commands().find(L"lvx_Report_Que");
  ASSERT_NE(command, nullptr);
  EXPECT_EQ(command->group, L"lvx_");
  EXPECT_EQ(command->globalName, L"Report_Que");
  EXPECT_EQ(command->flags, 1U);
  EXPECT_EQ(command->localNameNumber, -1);
  EXPECT_NE(command->resourceModule, nullptr);
  EXPECT_EQ(asked, 0) << "no message file is looked for before the first command";
}

TEST(ModuleLoader, RegistersAllCommandsWithTheMessageFileMissing) {
  test::ModuleHost process;
  process.host.standinRunTime().setSupportPaths({});
  const LoadedModule module = LoadedModule::load(test::kModuleFile);
  EXPECT_EQ(process.host.commands().commands().size(), 3U);
}

TEST(ModuleLoader, LeavesNothingBehindAndLoadsAgain) {
  test::ModuleHost process;
  for (int i = 0; i < 3; ++i) {
    {
      const LoadedModule module = LoadedModule::load(test::kModuleFile);
      EXPECT_EQ(process.host.commands().commands().size(), 3U);
      EXPECT_EQ(process.host.documents().reactorCount(), 1U);
      EXPECT_EQ(process.host.moduleState().attachedModules(), 1U);
      EXPECT_TRUE(isInMemory(test::kModuleFile.c_str()));
    }
    EXPECT_THAT(commandNames(process.host), IsEmpty());
    EXPECT_EQ(process.host.documents().reactorCount(), 0U);
    EXPECT_EQ(process.host.moduleState().attachedModules(), 0U);
    EXPECT_EQ(process.host.moduleState().chainedLibraries(), 0U);
    EXPECT_FALSE(isInMemory(test::kModuleFile.c_str())) << "the library itself goes";
  }
  EXPECT_THAT(process.runner.takeOutsideCalls(), IsEmpty());
}

TEST(ModuleLoader, IsTheModulesToUnloadAndFitForSeveralDocuments) {
  test::ModuleHost process;
  const void* appId = nullptr;
  {
    const LoadedModule module = process.host.loadModule(test::kModuleFile);
    appId = module.appId();
    EXPECT_EQ(module.file(), test::kModuleFile);
    EXPECT_TRUE(process.host.linker().isUnlocked(appId));
    EXPECT_TRUE(process.host.linker().isMdiAware(appId));
  }
  EXPECT_FALSE(process.host.linker().isUnlocked(appId)) << "the host forgets a module that went";
}

TEST(ModuleLoader, AnswersEveryHostMessageWithHandled) {
  test::ModuleHost process;
  LoadedModule module = LoadedModule::load(test::kModuleFile);
  for (const std::uint32_t message : {0U, 3U, 4U, 5U, 6U, 15U, 16U, 4000000000U}) EXPECT_EQ(module.send(message), 0);
  module.drawingLoaded();
  EXPECT_EQ(process.host.commands().commands().size(), 3U);
}

TEST(ModuleLoader, SaysWhatIsWrongWithAFile) {
  test::ModuleHost process;
  const test::TemporaryFolder folder;
  const auto text = folder / "text.vmx";
  std::ofstream(text) << "this is no library\n";
  const auto empty = folder / "empty.vmx";
  std::ofstream{empty};

  EXPECT_THAT(wordsFor(folder / "nobody.vmx"), HasSubstr("there is no such file"));
  EXPECT_THAT(wordsFor(folder.path()), HasSubstr("it is no file"));
  EXPECT_THAT(wordsFor(text), HasSubstr("it is no module for this system"));
  EXPECT_THAT(wordsFor(empty), HasSubstr("it is no module for this system"));
  EXPECT_THAT(wordsFor(test::inBuild("/bin/LVX_MIRELLIB.vmx")), HasSubstr("it doesn't export 'vnrxGetApiVersion'"));
  EXPECT_THAT(wordsFor(test::inBuild("/tests/module/odd/odd_entry.vmx")),
              HasSubstr("it doesn't export 'vnrxEntryPoint'"));
  EXPECT_THAT(wordsFor(test::inBuild("/tests/module/odd/odd_version.vmx")),
              HasSubstr("it was built for interface version 0x170000, this host offers 0x180000"));
  EXPECT_THAT(wordsFor(test::inBuild("/tests/module/odd/odd_init.vmx")), HasSubstr("its init failed with 7"));
  EXPECT_THAT(wordsFor(test::inBuild("/tests/module/odd/odd_raise.vmx")),
              HasSubstr("its init raised an exception: no licence"));
  EXPECT_THAT(wordsFor(test::inBuild("/tests/module/odd/odd_thing.vmx")),
              HasSubstr("its init raised an exception of unknown kind"));
  for (const char* name : {"/odd_entry.vmx", "/odd_version.vmx", "/odd_init.vmx", "/odd_raise.vmx", "/odd_thing.vmx"})
    EXPECT_FALSE(isInMemory((test::inBuild("/tests/module/odd") + name).c_str())) << name;
}

TEST(ModuleLoader, RefusesAModuleThatIsLoadedAlreadyUnderWhateverNameAndLeavesTheFirstAlone) {
  test::ModuleHost process;
  const test::TemporaryFolder folder;
  std::filesystem::create_symlink(test::kModuleFile, folder / "other.vmx");
  std::filesystem::create_directory_symlink(test::inBuild("/bin"), folder / "bin");
  {
    const LoadedModule module = LoadedModule::load(test::kModuleFile);
    for (const std::filesystem::path& name :
         {std::filesystem::path(test::kModuleFile), folder / "other.vmx", folder / "bin/LVX_MirelReport.vmx",
          folder / "bin/../bin/LVX_MirelReport.vmx"})
      EXPECT_EQ(wordsFor(name), "module: " + name.string() + ": it is loaded already");
    EXPECT_EQ(process.host.commands().commands().size(), 3U);
    EXPECT_EQ(process.host.moduleState().attachedModules(), 1U);
    EXPECT_EQ(process.host.documents().reactorCount(), 1U);
  }
  EXPECT_TRUE(process.host.commands().commands().empty());
  EXPECT_FALSE(isInMemory(test::kModuleFile.c_str()));
  EXPECT_EQ(wordsFor(folder / "bin/LVX_MirelReport.vmx"), "loaded") << "once the first has gone";
}

TEST(ModuleLoader, NamesTheCompanionThatIsMissing) {
  test::ModuleHost process;
  const test::TemporaryFolder folder;
  std::filesystem::copy_file(test::kModuleFile, folder / "LVX_MirelReport.vmx");
  EXPECT_THAT(wordsFor(folder / "LVX_MirelReport.vmx"), HasSubstr("it needs 'LVX_MIRELLIB.vmx'"));
  EXPECT_TRUE(process.host.commands().commands().empty());
  std::filesystem::copy_file(test::inBuild("/bin/LVX_MIRELLIB.vmx"), folder / "LVX_MIRELLIB.vmx");
  EXPECT_EQ(wordsFor(folder / "LVX_MirelReport.vmx"), "loaded");
}

}  // namespace
}  // namespace lvx
