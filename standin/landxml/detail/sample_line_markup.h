#pragma once

#include <string>

#include "civil/drawing.h"
#include "landxml/detail/document.h"
#include "landxml/detail/file_terms.h"
#include "landxml/detail/markup.h"
#include "landxml/detail/section_markup.h"

namespace lvx::landxml::detail {

/// Name of the entry that says how far a sample line reaches where no surface lies under it.
inline constexpr std::string_view kExtentName = "Extent";

/// Sample lines as CrossSect elements: standard attributes and the grounds under the line, which every program shows as
/// a section, and our Feature with the vertices and the handle. `like` is an element whose prefix they take over.
class SampleLineMarkup {
 public:
  /// All must outlive it. Grounds are those of all surfaces of `drawing`.
  SampleLineMarkup(const civil::Drawing& drawing, const FileTerms& terms, const SectionMarkup& markup, Node root);

  [[nodiscard]] std::string lineText(const civil::AlignmentObject& alignment, const civil::SampleLine& line, Node like,
                                     const Layout& layout) const;
  /// The entries with the grounds, each behind its lead; offsets along the line from where it meets the alignment.
  [[nodiscard]] std::string groundsText(const civil::AlignmentObject& alignment, const civil::SampleLine& line,
                                        Node like, const std::string& lead) const;
  /// Our Feature.
  [[nodiscard]] Markup featureOf(const civil::SampleLine& line, Node like) const;
  [[nodiscard]] std::string verticesText(const civil::SampleLine& line) const;
  /// angleSkew of a line in the file's angular unit; empty for one that is square to the alignment.
  [[nodiscard]] std::string skewText(const civil::AlignmentObject& alignment, const civil::SampleLine& line) const;
  /// Whether saving a line that moved samples the entry of that name anew.
  [[nodiscard]] bool isSampled(const std::string& entry) const;

 private:
  enum class AngularUnit { Radians, Grads, Degrees, DegreesMinutesSeconds };

  const civil::Drawing& drawing_;
  const FileTerms& terms_;
  const SectionMarkup& markup_;
  AngularUnit angularUnit_ = AngularUnit::Radians;
};

}  // namespace lvx::landxml::detail
