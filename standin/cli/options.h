#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace lvx::cli {

enum class Overwrite : std::uint8_t { Ask, Always, Never };
enum class ProgressMode : std::uint8_t { Auto, Always, Never };

/// The options that every command knows.
struct CommonOptions {
  std::string forms = "txt,xls,html";
  bool overwrite = false;
  bool keep = false;
  std::string language = "en";
  std::string messages;
  std::string release = "R24.3";
  std::string progress = "auto";
  std::string module;
  std::string reportCodePage;
  std::string messageCodePage = "WINDOWS-1252";
  bool quiet = false;

  [[nodiscard]] Overwrite overwriteMode() const {
    if (overwrite) return Overwrite::Always;
    return keep ? Overwrite::Never : Overwrite::Ask;
  }
  [[nodiscard]] ProgressMode progressMode() const {
    if (progress == "always") return ProgressMode::Always;
    return progress == "never" || quiet ? ProgressMode::Never : ProgressMode::Auto;
  }
  [[nodiscard]] bool writes(const std::string& form) const {
    return ("," + forms + ",").find("," + form + ",") != std::string::npos;
  }
};

struct InfoOptions {
  std::string drawing;
  bool json = false;
};

struct ProjectionOptions {
  std::string drawing;
  std::string alignment;
  std::string site;
  bool siteGiven = false;
  std::string group;
  std::string surface;
  std::string stem;
};

struct PointsOptions {
  std::string drawing;
  std::string alignment;
  std::string site;
  bool siteGiven = false;
  std::string group;
  /// "1,5,7-9", in place of a group where given.
  std::string points;
  bool pointsGiven = false;
  std::string stem;
};

struct GlsOptions {
  std::string drawing;
  std::string alignment;
  std::string site;
  bool siteGiven = false;
  std::string profile;
  std::string group;
  std::string stem;
  bool addSections = false;
  /// Where the drawing with its added sections goes; empty: they stay in memory.
  std::string saveTo;
};

struct BatchOptions {
  std::string jobs;
  /// Reports at a time; 0: as many as the machine has processors.
  int atOnce = 0;
};

struct PlayOptions {
  std::string drawing;
  std::string script;
  bool checks = false;
};

}  // namespace lvx::cli
