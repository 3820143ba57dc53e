#include "cli/made_objects.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <tuple>
#include <utility>

#include "civil/ground_profile.h"
#include "civil/sibling_names.h"
#include "cli/failure.h"
#include "cli/name_lookup.h"
#include "cli/terminal.h"
#include "text/number_text.h"

namespace lvx::cli {

namespace {

/// The profile that rules without a profile's name ask for; null where there is none, which the rules themselves tell.
const civil::ProfileObject* chosenProfile(const civil::AlignmentObject& alignment, const civil::SampleLineRules& rules,
                                          const std::string& preferred, bool quiet) {
  if (!rules.profile.empty()) return &findProfile(alignment, rules.profile);
  if (!rules.intersectionPoints && !rules.curveEnds) return nullptr;
  if (!preferred.empty()) return &findProfile(alignment, preferred);
  const civil::ProfileObject* first = nullptr;
  std::size_t others = 0;
  for (const civil::ProfileObject& profile : alignment.profiles) {
    if (profile.profile.isGround() || profile.profile.isEmpty()) continue;
    if (first == nullptr)
      first = &profile;
    else
      ++others;
  }
  if (first != nullptr && others > 0 && !quiet)
    say("sample lines: by profile '" + first->name + "', the first of " + std::to_string(others + 1) +
            " design profiles; profile= names another",
        Severity::Note);
  return first;
}

void tellReach(const std::vector<civil::MadeSampleLine>& lines, const civil::SampleLineRules& rules) {
  std::size_t noGround = 0;
  std::size_t largest = 0;
  for (const civil::MadeSampleLine& line : lines) {
    using enum civil::SampleLineReach;
    noGround += line.leftReach == NoGround || line.rightReach == NoGround ? 1U : 0U;
    largest += line.leftReach == Largest || line.rightReach == Largest ? 1U : 0U;
  }
  const std::string width = text::shortText(rules.largest);
  const std::string of = " of " + std::to_string(lines.size());
  if (noGround > 0)
    say("sample lines that don't meet surface '" + rules.border + "' on one side or both: " + std::to_string(noGround) +
            of + "; they are " + width + " wide there",
        Severity::Warning);
  if (largest > 0)
    say("sample lines that end within surface '" + rules.border + "', at the largest width of " + width + ": " +
            std::to_string(largest) + of,
        Severity::Warning);
}

std::string ungrounded(const civil::AlignmentObject& alignment, const civil::SurfaceObject& surface) {
  const std::string sentence = "nothing was written: alignment '" + alignment.name + "' ";
  if (alignment.geometry.isEmpty()) return sentence + "has no elements";
  if (surface.surface.isEmpty()) return sentence + "gets no ground, since surface '" + surface.name + "' is empty";
  const civil::Box box = surface.surface.box();
  return sentence + "doesn't meet surface '" + surface.name + "', which lies from x " + text::fixedText(box.minX) +
         ", y " + text::fixedText(box.minY) + " to x " + text::fixedText(box.maxX) + ", y " + text::fixedText(box.maxY);
}

/// Points behind those of the drawing.
class AddingPoints final : public civil::ReversibleChange {
 public:
  AddingPoints(civil::Handle first, std::int32_t firstNumber, std::vector<civil::Vec3> places)
      : first_(first), firstNumber_(firstNumber), places_(std::move(places)) {}

  void make(civil::Drawing& drawing) override {
    drawing.points.reserve(drawing.points.size() + places_.size());
    for (std::size_t i = 0; i < places_.size(); ++i) {
      civil::Point point;
      point.handle = first_ + i;
      point.number = firstNumber_ + static_cast<std::int32_t>(i);
      point.file = civil::kNoFile;
      point.position = places_[i];
      drawing.points.push_back(std::move(point));
    }
  }
  void undo(civil::Drawing& drawing) override { drawing.points.resize(drawing.points.size() - places_.size()); }
  [[nodiscard]] civil::Handle object() const override { return first_; }

 private:
  civil::Handle first_;
  std::int32_t firstNumber_;
  std::vector<civil::Vec3> places_;
};

}  // namespace

civil::SampleLineRules rulesOf(const options::LinesOptions& options) {
  try {
    std::vector<civil::SampleLineRule> pairs = civil::splitSampleLineRules(options.rules);
    for (std::size_t i = 0; i < options.keys.size(); ++i) {
      const options::RuleValue& value = options.keys[i];
      const std::string key(civil::sampleLineKeys()[i].key);
      if (value.isSet) pairs.push_back({key, "yes"});
      if (value.text) pairs.push_back({key, *value.text});
    }
    return civil::sampleLineRules(pairs);
  } catch (const civil::SampleLineError& error) {
    throw Failure(kUsage, error.what());
  }
}

civil::SampleLineRules parseRules(const std::string& text) {
  options::LinesOptions options;
  options.rules = text;
  return rulesOf(options);
}

std::vector<civil::MadeSampleLine> makeLines(const civil::Drawing& drawing, const civil::AlignmentObject& alignment,
                                             const civil::SampleLineRules& rules, const std::string& profile,
                                             bool quiet) {
  const civil::ProfileObject* const vertical = chosenProfile(alignment, rules, profile, quiet);
  const civil::SurfaceObject* const border = rules.border.empty() ? nullptr : &findSurface(drawing, rules.border);
  try {
    std::vector<civil::MadeSampleLine> lines =
        civil::makeSampleLines(rules, {.axis = alignment.geometry,
                                       .profile = vertical == nullptr ? nullptr : &vertical->profile,
                                       .border = border == nullptr ? nullptr : &border->surface,
                                       .stationText = [](double station) { return text::stationText(station); }});
    if (!quiet) tellReach(lines, rules);
    return lines;
  } catch (const civil::SampleLineError& error) {
    throw Failure(kNotWritten, std::string("nothing was written: ") + error.what());
  }
}

civil::Handle MadeForReport::make(civil::ReversibleChangePtr change) {
  drawing_.edit([&](civil::Drawing& drawing) { change->make(drawing); });
  changes_.push_back(std::move(change));
  return changes_.back()->object();
}

const civil::SampleLineGroup& MadeForReport::addLines(const civil::AlignmentObject& alignment, const std::string& rules,
                                                      const std::string& profile, bool quiet) {
  const civil::SampleLineRules read = parseRules(rules);
  const auto lines = makeLines(drawing_.drawing(), alignment, read, profile, quiet);
  if (!quiet)
    say(text::countText(lines.size(), "sample line") + " made for this report, from " +
            text::stationText(lines.front().station) + " to " + text::stationText(lines.back().station),
        Severity::Note);
  const civil::Handle made = make(civil::addingSampleLineGroup(
      alignment.handle, civil::freeName(alignment.sampleLineGroups, civil::textOf(read)), civil::sampleLinesOf(lines)));
  return *drawing_.index().byHandle(made)->as<civil::SampleLineGroup>();
}

const civil::ProfileObject& MadeForReport::addGroundProfile(const civil::AlignmentObject& alignment,
                                                            const civil::SurfaceObject& surface, double tolerance,
                                                            bool quiet) {
  civil::Profile ground = civil::groundProfile(alignment.geometry, surface.surface, {.thinning = tolerance});
  if (ground.isEmpty()) throw Failure(kNotWritten, ungrounded(alignment, surface));
  constexpr double kSame = 1e-3;
  if (!quiet) {
    say("ground of surface '" + surface.name + "' from " + text::stationText(ground.startStation()) + " to " +
            text::stationText(ground.endStation()) + ": " + text::countText(ground.points().size(), "point"),
        Severity::Note);
    if (ground.startStation() > alignment.geometry.startStation() + kSame ||
        ground.endStation() < alignment.geometry.endStation() - kSame)
      say("the alignment runs from " + text::stationText(alignment.geometry.startStation()) + " to " +
              text::stationText(alignment.geometry.endStation()) +
              ": where there is no ground, elevations lie on its first and last line drawn on",
          Severity::Note);
    constexpr std::size_t kMostGaps = 5;
    const std::size_t told = std::min(kMostGaps, ground.gapCount());
    for (const civil::ProfileGap& gap : ground.gaps().first(told))
      say("no ground of surface '" + surface.name + "' from " + text::stationText(gap.startStation) + " to " +
              text::stationText(gap.endStation) + ": elevations there lie on the straight line across",
          Severity::Warning);
    if (told < ground.gapCount())
      say(text::countText(ground.gapCount() - told, "more gap") + " of that kind", Severity::Warning);
  }
  const civil::Handle made = make(
      civil::addingProfile(alignment.handle, civil::freeName(alignment.profiles, surface.name), std::move(ground)));
  return *drawing_.index().byHandle(made)->as<civil::ProfileObject>();
}

std::vector<civil::Handle> MadeForReport::addPointsOf(const civil::SurfaceObject& surface, bool quiet) {
  std::vector<civil::Vec3> places(surface.surface.points().begin(), surface.surface.points().end());
  std::sort(places.begin(), places.end(), [](const civil::Vec3& a, const civil::Vec3& b) {
    return std::tie(a.x, a.y, a.z) < std::tie(b.x, b.y, b.z);
  });
  std::int32_t largest = 0;
  for (const civil::Point& point : drawing_.drawing().points) largest = std::max(largest, point.number);
  const std::string sentence = "nothing was written: ";
  if (places.empty()) throw Failure(kNotWritten, sentence + "surface '" + surface.name + "' has no points");
  if (places.size() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max() - largest))
    throw Failure(kNotWritten, sentence + "there are no numbers left above " + std::to_string(largest) + " for the " +
                                   text::countText(places.size(), "point") + " of surface '" + surface.name + "'");
  if (!quiet)
    say(text::countText(places.size(), "point") + " of surface '" + surface.name + "', numbered from " +
            std::to_string(largest + 1) + " on for this report",
        Severity::Note);
  std::vector<civil::Handle> handles;
  handles.reserve(places.size());
  const civil::Handle first = civil::largestHandle(drawing_.drawing()) + 1;
  for (std::size_t i = 0; i < places.size(); ++i) handles.push_back(first + i);
  make(std::make_unique<AddingPoints>(first, largest + 1, std::move(places)));
  return handles;
}

void MadeForReport::remove() {
  for (; !changes_.empty(); changes_.pop_back())
    drawing_.edit([&](civil::Drawing& drawing) { changes_.back()->undo(drawing); });
}

}  // namespace lvx::cli
