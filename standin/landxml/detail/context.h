#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "civil/drawing.h"
#include "landxml/detail/document.h"
#include "landxml/detail/numbers.h"
#include "landxml/detail/scanner.h"
#include "landxml/detail/trace.h"

namespace lvx::landxml::detail {

/// A number for a message: up to four decimals, never in a locale's form.
[[nodiscard]] std::string shownNumber(double value);

/// A point as the file places it. `problem` says why there is none.
struct PlacedPoint {
  civil::Vec2 plan;
  std::optional<double> elevation;
  std::string problem;
  [[nodiscard]] bool isPlaced() const { return problem.empty(); }
};

/// What all parts of the reader share: the drawing being filled, its diagnostics, its units, its handles, and the
/// points that others refer to by name.
class Context {
 public:
  Context(civil::Drawing& drawing, const Document& document, bool swapAxes, Trace* trace = nullptr);

  civil::Drawing& drawing;
  Node root;
  /// Where the drawing's things stand in the file, for saving; null where nobody asks.
  Trace* const trace;

  /// The file was saved by us: codes may be lists, point names are numbers.
  [[nodiscard]] bool isOurs() const { return ours_; }
  /// One millimetre in drawing units.
  [[nodiscard]] double millimetre() const { return millimetre_; }
  /// Easting stands before northing in this file.
  [[nodiscard]] bool areAxesSwapped() const { return swapAxes_; }
  /// The place of two numbers in the file's order.
  [[nodiscard]] civil::Vec2 plan(double first, double second) const {
    return swapAxes_ ? civil::Vec2{first, second} : civil::Vec2{second, first};
  }
  /// Radians of an angle in the file's angular unit; empty for a text that is none.
  [[nodiscard]] std::optional<double> angle(std::string_view text) const;

  void report(civil::Severity severity, Node where, std::string text);
  void warn(Node where, std::string text) { report(civil::Severity::Warning, where, std::move(text)); }
  void error(Node where, std::string text) { report(civil::Severity::Error, where, std::move(text)); }
  void note(Node where, std::string text) { report(civil::Severity::Note, where, std::move(text)); }
  [[nodiscard]] std::size_t lineOf(Node where) const;
  /// The element at a place that Node::place gave.
  [[nodiscard]] Node nodeAt(std::size_t place) const { return document_.at(place); }

  /// While it lives, what is reported is about one object, unless a Subject within says that it is about a part of it.
  /// Which object that is may come out late, or never: then it is about whatever the Subject around is about.
  ///     Context::Subject subject(context);
  ///     auto geometry = readGeometry(...);      // may report
  ///     if (!geometry) return;                  // no such object: the file as a whole
  ///     subject.is(object.handle = context.ticket(node, given));
  class Subject {
   public:
    explicit Subject(Context& context) : context_(context), first_(context.drawing.diagnostics.size()) {}
    Subject(Context& context, civil::Handle ticket) : Subject(context) { is(ticket); }
    ~Subject();
    Subject(const Subject&) = delete;
    Subject& operator=(const Subject&) = delete;
    void is(civil::Handle ticket) { ticket_ = ticket; }

   private:
    Context& context_;
    std::size_t first_;
    civil::Handle ticket_ = 0;
  };

  /// What follows from a number that can't be used.
  struct Consequence {
    std::string done = "taken as missing";
    civil::Severity severity = civil::Severity::Error;
  };
  /// Attribute as a number; empty where it is absent or isn't one, which is then reported for `speaker`.
  std::optional<double> number(Node node, const char* name, const std::string& speaker, const Consequence& otherwise);
  std::optional<double> number(Node node, const char* name, const std::string& speaker) {
    return number(node, name, speaker, Consequence());
  }
  /// The text of an element as numbers; what is wrong is reported for `speaker`, and the list is then empty.
  std::vector<double> numbers(Node node, const std::string& speaker);
  /// The same without a list of them; false where the numbers that were given to `use` don't count.
  bool eachNumber(Node node, const std::string& speaker, const std::function<void(double)>& use);

  /// Where a point element lies: its own coordinates, else those of the point that it refers to.
  [[nodiscard]] PlacedPoint place(Node point) { return place(point, 0); }
  [[nodiscard]] PlacedPoint placeByName(std::string_view name) { return placeByName(name, 0); }
  /// The first CgPoint of that name, or another point of the file; empty if there is none.
  [[nodiscard]] Node pointNamed(std::string_view name);

  /// The codes that an attribute holds: several in files of ours alone. Equal texts share one list.
  [[nodiscard]] civil::CodeList codes(std::string_view text);

  /// A ticket in place of a handle, until all objects are known: `settleHandles` then gives each object its own, the
  /// file's where it has one, else the next free one from 0x100 in the order of the document.
  [[nodiscard]] civil::Handle ticket(Node position, const std::optional<std::string>& handleText);
  [[nodiscard]] static std::optional<civil::Handle> parseHandle(const std::optional<std::string>& text);
  /// Ends the reading: also tells how many diagnostics aren't listed.
  void settleHandles();
  /// Place of the object with that ticket in the document.
  [[nodiscard]] std::ptrdiff_t positionOf(civil::Handle ticket) const {
    return static_cast<std::ptrdiff_t>(tickets_[ticket - 1]);
  }
  [[nodiscard]] Node nodeOf(civil::Handle ticket) const { return document_.at(tickets_[ticket - 1]); }

 private:
  /// Points by their names, of several the first: a table of places, since there may be millions.
  class PointNames {
   public:
    explicit PointNames(const Document& document) : document_(document) {}
    void add(Node point);
    [[nodiscard]] Node find(std::string_view name) const;

   private:
    static constexpr std::size_t kFree = static_cast<std::size_t>(-1);
    [[nodiscard]] std::size_t slotOf(std::string_view name) const;

    const Document& document_;
    std::vector<std::size_t> slots_;
    std::size_t count_ = 0;
  };
  struct GivenHandle {
    std::size_t ticket = 0;
    civil::Handle handle = 0;
  };

  bool isGood(const NumberList& list, Node node, const std::string& speaker);
  std::unordered_set<civil::Handle> settleGivenHandles(std::vector<civil::Handle>& handles);
  void readUnits();
  PlacedPoint place(Node point, int depth);
  PlacedPoint placeByName(std::string_view name, int depth);
  void collectPoints(Node collection);
  void collectOtherPoints();

  const Document& document_;
  bool swapAxes_ = false;
  bool ours_ = false;
  double millimetre_ = 0.001;
  enum class AngularUnit { Radians, Grads, Degrees, DegreesMinutesSeconds } angularUnit_ = AngularUnit::Radians;
  std::vector<std::size_t> tickets_;  // places of the objects
  std::vector<GivenHandle> given_;    // ascending by ticket
  PointNames points_;
  std::unordered_map<std::string, Node> otherPoints_;
  std::unordered_map<std::string, civil::CodeList> codeLists_;
  bool pointsCollected_ = false;  // only when the first one is asked for: most files name none
  bool otherPointsCollected_ = false;
  std::size_t unreported_ = 0;
};

}  // namespace lvx::landxml::detail
