#include "landxml/detail/section_markup.h"

#include "landxml/detail/numbers.h"
#include "landxml/detail/tree.h"

namespace lvx::landxml::detail {

using civil::CorridorSection;
using civil::SectionOrigin;

SectionMarkup::SectionMarkup(const Trace& trace, const FileEditor& editor, const FileTerms& terms)
    : trace_(trace), editor_(editor), terms_(terms) {
  const Node root = trace.scanned.document.root();
  const std::string_view name = root.name();
  const auto colon = name.find(':');
  const std::string declaration =
      colon == std::string_view::npos ? "xmlns" : "xmlns:" + std::string(name.substr(0, colon));
  // Validators go by the namespace, which needn't agree with the version.
  std::string_view version = attribute(root, declaration.c_str());
  const auto mark = version.rfind("LandXML-");
  version = mark == std::string_view::npos ? attribute(root, "version") : version.substr(mark + 8);
  hasNames_ = version != "1.0" && version != "1.1";
  hasSectionNames_ = hasDictionaries_ = version != "1.0";
}

Markup SectionMarkup::featureMarkup(Node like, const std::string& name, const char* code,
                                    const std::vector<std::pair<std::string, std::string>>& properties) const {
  Markup markup{FileEditor::nameLike(like, "Feature"), {}, {}, false};
  const auto add = [&](const std::string& label, const std::string& value) {
    markup.children.push_back({FileEditor::nameLike(like, "Property"), {{"label", label}, {"value", value}}, {}, true});
  };
  if (!name.empty() && hasNames_) markup.attributes.emplace_back("name", name);
  markup.attributes.emplace_back("code", code);
  markup.attributes.emplace_back("source", "lvx");
  if (!name.empty() && !hasNames_) add("name", name);
  for (const auto& [label, value] : properties) add(label, value);
  return markup;
}

Markup SectionMarkup::addedStation(Node like, double station, const std::string& label) const {
  return featureMarkup(like, label, "lvx_addedStation", {{"sta", terms_.lengthText(station)}});
}

std::string SectionMarkup::codeText(const std::vector<std::string>& codes) const {
  std::string text;
  for (std::size_t i = 0; i < codes.size(); ++i) {
    if (i > 0) text += ',';
    for (const char c : codes[i]) {
      // In other programs' files a code is one text, commas and all.
      if (trace_.isOurs && c == ',')
        text += "%2C";
      else if (trace_.isOurs && c == '%')
        text += "%25";
      else
        text += c;
    }
  }
  return text;
}

std::string SectionMarkup::pointText(const civil::Baseline& baseline, const CorridorSection& section,
                                     const civil::SectionPoint& point, bool isAbsolute) const {
  double elevation = point.elevation;
  if (isAbsolute && baseline.profile != nullptr) {
    elevation += baseline.profile->profile.elevationAt(section.station).value_or(0.0);
  }
  return terms_.lengthText(point.offset) + ' ' + terms_.lengthText(elevation);
}

std::string SectionMarkup::partsText(const civil::Baseline& baseline, const CorridorSection& section, Node like,
                                     Node pattern, bool isAbsolute, const std::string& partLead) const {
  const std::vector<Node> patterns = childrenNamed(pattern, "DesignCrossSectSurf");
  std::string pointLead;
  std::string partClose;
  if (!patterns.empty() && !partLead.empty()) {
    if (const Node point = child(patterns.front(), "CrossSectPnt")) pointLead = editor_.layoutOf(point).lead;
    if (!pointLead.empty()) partClose = editor_.closeLead(patterns.front());
  }
  const std::string partName = FileEditor::nameLike(like, "DesignCrossSectSurf");
  const std::string pointName = FileEditor::nameLike(like, "CrossSectPnt");
  std::string text;
  for (std::size_t i = 0; i < section.parts.size(); ++i) {
    const civil::SectionPart& part = section.parts[i];
    const std::string codes = codeText(part.codes);
    text += partLead + '<' + partName;
    if (!codes.empty()) text += " name=\"" + escapedAttribute(codes) + '"';
    if (i < patterns.size() && attributeText(patterns[i], "name") == codes) {
      // What a part is made of and how it closes is the same along the road; its measures aren't.
      for (const char* const kept : {"side", "material", "closedArea"}) {
        if (const auto value = patterns[i].attribute(kept)) {
          text += ' ' + std::string(kept) + "=\"" + escapedAttribute(value.value()) + '"';
        }
      }
    }
    text += '>';
    for (const civil::SectionPoint& point : part.points) {
      const std::string pointCodes = codeText(point.codes);
      text += pointLead + '<' + pointName;
      if (!pointCodes.empty()) text += " code=\"" + escapedAttribute(pointCodes) + '"';
      text += '>' + pointText(baseline, section, point, isAbsolute) + "</" + pointName + '>';
    }
    text += partClose + "</" + partName + '>';
  }
  return text;
}

std::string SectionMarkup::sectionText(const civil::Baseline& baseline, const CorridorSection& section, Node like,
                                       Node pattern, bool isAbsolute, const Layout& layout) const {
  std::string partLead = layout.inner().lead;
  std::string close = layout.lead;
  if (const Node part = child(pattern, "DesignCrossSectSurf")) {
    partLead = editor_.layoutOf(part).lead;
    close = partLead.empty() ? std::string() : editor_.closeLead(pattern);
  }
  const std::string name = FileEditor::nameLike(like, "CrossSect");
  std::string text = '<' + name + " sta=\"" + terms_.lengthText(section.station) + '"';
  if (!section.label.empty() && hasSectionNames_) text += " name=\"" + escapedAttribute(section.label) + '"';
  text += '>' + partsText(baseline, section, like, pattern, isAbsolute, partLead);
  if (section.origin == SectionOrigin::Computed) {
    text += partLead;
    featureMarkup(like, {}, "lvx_section", {{"origin", "computed"}}).print({partLead, layout.unit}, text);
  }
  return text + close + "</" + name + '>';
}

}  // namespace lvx::landxml::detail
