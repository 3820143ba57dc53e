#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>

#include "package_texts/changelog.h"
#include "package_texts/man_pages.h"
#include "version/version.h"

namespace {

namespace fs = std::filesystem;

void write(const fs::path& path, const std::string& text) {
  std::ofstream file(path, std::ios::binary);
  file << text;
  file.close();
  if (!file) throw std::runtime_error("can't write " + path.string());
}

std::string read(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("can't read " + path.string());
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

/// lvx-package-texts FOLDER CHANGELOG PACKAGE MAINTAINER: writes FOLDER/*.1 and FOLDER/changelog.
int main(int argc, char** argv) {
  try {
    if (argc != 5) throw std::runtime_error("usage: lvx-package-texts FOLDER CHANGELOG PACKAGE MAINTAINER");
    const fs::path folder = argv[1];
    fs::create_directories(folder);
    const std::string day = lvx::version::day().empty() ? "1970-01-01" : lvx::version::day();
    for (const auto& page : lvx::package_texts::manPages({lvx::version::number(), day}))
      write(folder / (page.name + ".1"), page.text);
    write(folder / "changelog", lvx::package_texts::debianChangelog(read(argv[2]), argv[3], argv[4], day));
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "lvx-package-texts: " << error.what() << '\n';
    return 1;
  }
}
