#pragma once

#include <string>
#include <utility>
#include <vector>

#include "civil/drawing.h"
#include "landxml/detail/document.h"
#include "landxml/detail/file_editor.h"
#include "landxml/detail/file_terms.h"
#include "landxml/detail/markup.h"
#include "landxml/detail/trace.h"

namespace lvx::landxml::detail {

/// What saving writes anew: corridor sections and our Features, in the words that the file's version of LandXML has, with
/// the prefix and the layout of what stands around them. `like` is an element whose prefix they take over.
class SectionMarkup {
 public:
  /// All must outlive it.
  SectionMarkup(const Trace& trace, const FileEditor& editor, const FileTerms& terms);

  /// Whether the version has CrossSect/@name and FeatureDictionary; 1.0 hasn't.
  [[nodiscard]] bool hasSectionNames() const { return hasSectionNames_; }
  [[nodiscard]] bool hasDictionaries() const { return hasDictionaries_; }

  /// A Feature of ours with a Property for each pair; `name` may be empty.
  [[nodiscard]] Markup featureMarkup(Node like, const std::string& name, const char* code,
                                     const std::vector<std::pair<std::string, std::string>>& properties) const;
  [[nodiscard]] Markup addedStation(Node like, double station, const std::string& label) const;
  /// "offset elevation"; `isAbsolute` adds the elevation of the baseline's profile.
  [[nodiscard]] std::string pointText(const civil::Baseline& baseline, const civil::CorridorSection& section,
                                      const civil::SectionPoint& point, bool isAbsolute) const;
  /// The parts of a section, each behind the lead of its own; `pattern` is a CrossSect whose attributes and layout they
  /// take over (or empty).
  [[nodiscard]] std::string partsText(const civil::Baseline& baseline, const civil::CorridorSection& section, Node like,
                                      Node pattern, bool isAbsolute, const std::string& partLead) const;
  [[nodiscard]] std::string sectionText(const civil::Baseline& baseline, const civil::CorridorSection& section,
                                        Node like, Node pattern, bool isAbsolute, const Layout& layout) const;

 private:
  [[nodiscard]] std::string codeText(const std::vector<std::string>& codes) const;

  const Trace& trace_;
  const FileEditor& editor_;
  const FileTerms& terms_;
  bool hasNames_ = true;         // Feature/@name, not before 1.2
  bool hasSectionNames_ = true;  // CrossSect/@name, not in 1.0
  bool hasDictionaries_ = true;  // FeatureDictionary, not in 1.0
};

}  // namespace lvx::landxml::detail
