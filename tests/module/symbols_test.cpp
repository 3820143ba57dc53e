// What the module's file shows to the system's loader.
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include <elf.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/places.h"
#include "support/run_program.h"

namespace lvx {
namespace {

using testing::Contains;
using testing::ElementsAre;

/// The dynamic section of a shared library of this machine, read by the format's own layout.
class SharedLibrary {
 public:
  explicit SharedLibrary(const std::string& path) : bytes_(test::fileBytes(path)) {
    const auto header = at<Elf64_Ehdr>(0);
    for (std::size_t i = 0; i < header.e_shnum; ++i)
      sections_.push_back(at<Elf64_Shdr>(header.e_shoff + i * header.e_shentsize));
    for (const Elf64_Shdr& section : sections_) {
      if (section.sh_type == SHT_DYNSYM) readSymbols(section);
      if (section.sh_type == SHT_DYNAMIC) readNeeded(section);
    }
  }

  std::set<std::string> exported;
  std::set<std::string> imported;
  std::set<std::string> needed;

 private:
  template <class T>
  T at(std::size_t offset) const {
    T value;
    std::memcpy(&value, bytes_.data() + offset, sizeof value);
    return value;
  }
  [[nodiscard]] std::string text(const Elf64_Shdr& owner, std::size_t index) const {
    return bytes_.data() + sections_.at(owner.sh_link).sh_offset + index;
  }
  void readSymbols(const Elf64_Shdr& section) {
    for (std::size_t i = 1; i < section.sh_size / sizeof(Elf64_Sym); ++i) {
      const auto symbol = at<Elf64_Sym>(section.sh_offset + i * sizeof(Elf64_Sym));
      (symbol.st_shndx == SHN_UNDEF ? imported : exported).insert(text(section, symbol.st_name));
    }
  }
  void readNeeded(const Elf64_Shdr& section) {
    for (std::size_t i = 0; i < section.sh_size / sizeof(Elf64_Dyn); ++i) {
      const auto entry = at<Elf64_Dyn>(section.sh_offset + i * sizeof(Elf64_Dyn));
      if (entry.d_tag == DT_NEEDED) needed.insert(text(section, entry.d_un.d_val));
    }
  }

  std::string bytes_;
  std::vector<Elf64_Shdr> sections_;
};

TEST(ModuleFile, ExportsItsTwoFunctionsAndNothingElse) {
  const SharedLibrary module(test::inBuild("/bin/LVX_MirelReport.vmx"));
  EXPECT_THAT(module.exported, ElementsAre("vnrxEntryPoint", "vnrxGetApiVersion"));
}

TEST(ModuleFile, ImportsItsCompanionByAnOrdinaryLoadTimeImport) {
  const SharedLibrary module(test::inBuild("/bin/LVX_MirelReport.vmx"));
  EXPECT_THAT(module.needed, Contains("LVX_MIRELLIB.vmx"));
  EXPECT_THAT(module.imported, Contains("pvsa_lvx_getQmtObject"));
  EXPECT_THAT(module.imported, Contains("vnrxHost"));
}

TEST(CompanionFile, ExportsItsSixFunctionsAndNothingElse) {
  const SharedLibrary companion(test::inBuild("/bin/LVX_MIRELLIB.vmx"));
  EXPECT_THAT(companion.exported, ElementsAre("pvsa_lvx_getQmtObject", "pvsa_lvx_gethelemp", "pvsa_lvx_getsites",
                                              "pvsa_lvx_getvelem", "pvsa_lvx_releaseQmtObject", "pvsa_lvx_relsites"));
}

}  // namespace
}  // namespace lvx
