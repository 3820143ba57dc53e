#include "gls/gls_assembly.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "gls/alignment_elements.h"
#include "gls/corridor_stage.h"
#include "gls/detail/station_search.h"
#include "gls/station_rows.h"
#include "host/site_tree.h"
#include "projection/sample_line_collector.h"
#include "services/formatted_text.h"
#include "services/message_catalogue.h"

namespace lvx::gls {

using detail::FirstComeFirstServed;
using detail::StationSearch;
using framework::OwnedList;
using host::taxel;
using host::tvert;
using services::formatText;
using services::getMessage;
using services::Message;

namespace {

// ---------------------------------------------------------------- horizontal elements

constexpr std::int32_t kLine = 0;
constexpr std::int32_t kArc = 1;
constexpr std::int32_t kClothoidIn = 2;
constexpr std::int32_t kClothoidOut = 3;

constexpr double kTwoPi = 6.283185307179586;
constexpr double kGonPerRadian = 63.66197723675813;

bool isKnown(std::int32_t type) { return type >= kLine && type <= kClothoidOut; }
bool isClothoid(std::int32_t type) { return type == kClothoidIn || type == kClothoidOut; }

CString numbered(Message message, std::int64_t number) { return formatText(L"%s%d", {getMessage(message), number}); }

/// Names the points at which one horizontal element follows another. The clothoid that leads into an arc and the one that
/// leads out of it share a number.
class TransitionNames {
 public:
  /// Name of the start of `element`; `before` is null at the alignment's own start.
  CString startOf(const taxel& element, const taxel* before) {
    if (element.type == kLine) return lineStart(before);
    if (element.type == kArc) return arcStart(before);
    return clothoidStart(element, before);
  }
  /// Lines are numbered for the points where two of them meet.
  void passed(const taxel& element) {
    if (element.type == kLine) ++line_;
  }
  /// Name of the alignment's end.
  [[nodiscard]] CString endAfter(const taxel& last) const {
    if (last.type == kArc) return numbered(Message::ArcEnd, arc_);
    if (last.type > kArc) return numbered(Message::ClothoidEnd, clothoid_);
    return {};
  }

 private:
  CString lineStart(const taxel* before) {
    if (before == nullptr) return {};
    if (before->type == kLine) return formatText(L"ILL%d-%d", {line_ - 1, line_});
    if (before->type == kArc) return numbered(Message::ArcEnd, arc_++);
    return numbered(Message::ClothoidEnd, clothoid_++);
  }

  CString arcStart(const taxel* before) {
    if (before == nullptr || before->type != kArc) return numbered(Message::ArcStart, arc_);
    const CString end = numbered(Message::ArcEnd, arc_++);
    return end + L", " + numbered(Message::ArcStart, arc_);
  }

  CString clothoidStart(const taxel& element, const taxel* before) {
    if (before == nullptr || before->type == kLine) return numbered(Message::ClothoidStart, clothoid_);
    if (before->type == kArc) return numbered(Message::ArcEnd, arc_++);
    if (element.type == kClothoidOut && before->type == kClothoidIn) {
      // The two meet in an arc of no length.
      const CString start = numbered(Message::ArcStart, arc_);
      return start + L", " + numbered(Message::ArcEnd, arc_++);
    }
    const CString end = numbered(Message::ClothoidEnd, clothoid_++);
    return end + L", " + numbered(Message::ClothoidStart, clothoid_);
  }

  std::int64_t arc_ = 1;
  std::int64_t clothoid_ = 1;
  std::int64_t line_ = 1;
};

/// Between two directions in radians, in gon; the smaller of the two ways round.
double angleBetween(double a, double b) {
  const double low = std::min(a, b);
  const double high = std::max(a, b);
  return std::min(high - low, kTwoPi - high + low) * kGonPerRadian;
}

/// A line's 0.0, an arc's absolute radius, a clothoid's parameter A.
double parameterOf(const taxel& element) {
  if (element.type == kArc) return std::abs(element.startRadius);
  if (!isClothoid(element.type)) return 0.0;
  const double startRadius = std::abs(element.startRadius);
  const double endRadius = std::abs(element.endRadius);
  if (endRadius == 0.0) return std::sqrt(element.length * startRadius);
  return std::sqrt(element.length * startRadius / (1.0 - startRadius / endRadius));
}

void addRow(tglsReport& report, double station, CString name) {
  auto row = std::make_unique<tglsRow>();
  row->station = station;
  row->name = std::move(name);
  report.rows.append(std::move(row));
}

/// Fills `horElems`, and `rows` with a row for each transition and one that closes the alignment. An alignment that
/// begins with a line gets no row at its start.
void addHorizontalElements(const host::Ref<host::QmtAlignment>& alignment, tglsReport& report) {
  OwnedList<taxel> elements;
  double station = 0.0;
  framework::tpt3list points;
  pvsa_lvx_gethelemp(alignment, station, elements.get(), points);

  TransitionNames names;
  const taxel* before = nullptr;
  for (const taxel* element : elements.get()) {
    tglsHorElem* record = report.horElems.append(std::make_unique<tglsHorElem>());
    record->start = station;
    record->end = station + element->length;
    record->length = element->length;
    record->angle = angleBetween(element->startDirection, element->endDirection);
    if (isKnown(element->type)) {
      record->type = element->type;
      record->parameter = parameterOf(*element);
      if (before != nullptr || element->type != kLine) addRow(report, station, names.startOf(*element, before));
    }
    names.passed(*element);
    station += element->length;
    before = element;
  }

  // Without any element this is where the report ends, as at any index outside a list.
  if (before == nullptr) throw framework::InvalidArgumentException();
  const tglsHorElem& last = *report.horElems[report.horElems.size() - 1];
  addRow(report, last.end, names.endAfter(*before));
}

// ---------------------------------------------------------------- labels, vertical elements, corridors

void labelSampleLines(const host::Ref<host::QmtDocument>& document, const host::Ref<host::QmtDatabase>& database,
                      const CString& siteName, const CString& alignmentName, const CString& groupName,
                      StationRows& rows) {
  OwnedList<projection::tsl> lines;
  projection::collectSampleLines(document, database, siteName, alignmentName, projection::GroupFilter::named(groupName),
                                 lines.get());
  for (const projection::tsl* line : lines.get()) rows.addStationLabel(line->name, line->station);
}

void addVerticalElements(const host::RecordList<tvert>& points, tglsReport& report) {
  for (ArrayIndex k = 1; k < points.size(); ++k) {
    const tvert& before = *points[k - 1];
    const tvert& point = *points[k];
    tglsVerElem* record = report.verElems.append(std::make_unique<tglsVerElem>());
    if (k > 1) record->gradeChange = std::abs(point.gradeIn - before.gradeIn) * 100.0;
    record->grade = point.gradeIn * 100.0;
    record->length = std::abs(point.station - before.station);
    if (k == points.size() - 1) continue;
    record->type = 1;
    record->curveStart = point.station - point.halfLength;
    record->curveEnd = point.station + point.halfLength;
    record->radius = point.gradeIn > point.gradeOut ? -point.radius : point.radius;
    record->halfLength = point.halfLength;
  }
}

void labelVerticalCurves(const host::RecordList<tvert>& points, StationRows& rows) {
  for (ArrayIndex k = 1; k + 1 < points.size(); ++k) {
    const tvert& point = *points[k];
    rows.addStationLabel(numbered(Message::VerticalCurveStart, k), point.station - point.halfLength);
    rows.addStationLabel(numbered(Message::VerticalIntersection, k), point.station);
    rows.addStationLabel(numbered(Message::VerticalCurveEnd, k), point.station + point.halfLength);
  }
}

/// Corridor records for the length of a scope.
struct CorridorScope {
  CorridorScope() = default;
  CorridorScope(const CorridorScope&) = delete;
  CorridorScope& operator=(const CorridorScope&) = delete;
  ~CorridorScope() { releaseCorridors(list); }

  CorridorList list;
};

// ---------------------------------------------------------------- elevations and ordinates

/// For each row the first of `elements` that holds its station, or null. `ask(element, take)` calls take(range) for each
/// range of stations that the element holds.
template <class Element, class Ask>
std::vector<const Element*> firstHolders(const StationSearch& search, ArrayIndex rowCount,
                                         const framework::CTypedPtrArray<framework::CPtrArray, Element*>& elements,
                                         Ask ask) {
  std::vector<const Element*> holders(static_cast<std::size_t>(rowCount), nullptr);
  FirstComeFirstServed positions(search.size());
  for (const Element* element : elements)
    ask(*element, [&](StationSearch::Range range) {
      positions.take(
          range, [&](std::size_t position) { holders[static_cast<std::size_t>(search.rowAt(position))] = element; });
    });
  return holders;
}

double onStartTangent(const tverticalElement& element, double station) {
  return (station - element.startStation) * element.startGrade + element.startElevation;
}

double onPiece(const tverticalElement& element, double station) {
  if (element.radius == 0.0) return onStartTangent(element, station);
  const double start = element.startStation;
  const double grade = element.startGrade;
  const double radius = element.radius;
  return (grade - start / radius) * station + station * station / (2.0 * radius) +
         (start * start / (2.0 * radius) - start * grade + element.startElevation);
}

/// The incoming tangent up to the intersection point, the outgoing one behind it.
double onTangents(const tverticalElement& element, double station) {
  if (element.radius == 0.0 || station <= element.startStation + element.halfLength)
    return onStartTangent(element, station);
  return (station - element.endStation) * element.endGrade + element.endElevation;
}

/// Beyond the ends of the profile the first tangent goes on backwards and the last one forwards. A station that lies in
/// a gap of the chain takes the elevation of the row above.
void fillElevations(const VerticalElementList& chain, const StationSearch& search, tglsReport& report) {
  const auto holders =
      firstHolders(search, report.rows.size(), chain, [&search](const tverticalElement& element, auto take) {
        take(search.between(element.startStation, element.endStation));
      });
  double elevation = 0.0;
  for (ArrayIndex i = 0; i < report.rows.size(); ++i) {
    tglsRow& row = *report.rows[i];
    const double station = row.station;
    const tverticalElement* holder = holders[static_cast<std::size_t>(i)];
    if (!chain.isEmpty() && station < chain[0]->startStation)
      elevation = onStartTangent(*chain[0], station);
    else if (!chain.isEmpty() && station > chain[chain.size() - 1]->endStation)
      elevation = onStartTangent(*chain[chain.size() - 1], station);
    else if (holder != nullptr)
      elevation = onPiece(*holder, station);
    row.elevation = elevation;
    if (holder != nullptr) row.tangentElevation = onTangents(*holder, station);
  }
}

void fillOrdinates(const StationSearch& search, tglsReport& report) {
  const auto holders =
      firstHolders(search, report.rows.size(), report.verElems, [&search](const tglsVerElem& element, auto take) {
        if (element.type != 0) take(search.between(element.curveStart, element.curveEnd));
      });
  for (ArrayIndex i = 0; i < report.rows.size(); ++i) {
    tglsRow& row = *report.rows[i];
    row.curveY = row.elevation - row.tangentElevation;
    const tglsVerElem* curve = holders[static_cast<std::size_t>(i)];
    if (curve == nullptr)
      row.curveX = kOutsideCurves;
    else if (curve->curveStart + curve->halfLength >= row.station)
      row.curveX = row.station - curve->curveStart;
    else
      row.curveX = curve->curveEnd - row.station;
  }
}

// ---------------------------------------------------------------- distance rows, horizontal columns, notes

void insertDistanceRows(tglsReport& report) {
  std::vector<std::unique_ptr<tglsRow>> distanceRows;
  for (ArrayIndex i = 1; i < report.rows.size(); ++i) {
    distanceRows.push_back(std::make_unique<tglsRow>());
    distanceRows.back()->distance = report.rows[i]->station - report.rows[i - 1]->station;
  }
  const auto stretches = static_cast<ArrayIndex>(distanceRows.size());
  report.rows.setSize(2 * stretches + 1);
  for (ArrayIndex i = stretches; i >= 1; --i) {
    report.rows.setAt(2 * i, report.rows[i]);
    report.rows.setAt(2 * i - 1, distanceRows[static_cast<std::size_t>(i - 1)].release());
  }
}

/// The middle one of a block's rows, the upper of two.
ArrayIndex middleRow(ArrayIndex first, ArrayIndex last) { return (last - first) / 2 + first; }

/// A horizontal element's data stands once, in the middle of the rows that it spans. `holders` are the elements that
/// close or open at each station row.
///
/// The element that ends at a row stands before the one that starts there, so the first found is the one that closes.
/// Without a row at its start an element's block begins at the first row.
void fillHorizontalColumns(const std::vector<const tglsHorElem*>& holders, tglsReport& report) {
  ArrayIndex blockStart = 0;
  for (ArrayIndex k = 2; k < report.rows.size(); k += 2) {
    const tglsHorElem* element = holders[static_cast<std::size_t>(k / 2)];
    if (element == nullptr) continue;
    tglsRow& row = *report.rows[middleRow(blockStart, k)];
    row.horType = element->type;
    row.horParameter = element->parameter;
    row.horLength = element->length;
    row.horAngle = element->angle;
    blockStart = k;
    if (k + 1 < report.rows.size()) report.horBreakRows.add(static_cast<std::int32_t>(k));
  }
}

/// Drawing units: a row this near to an element's start or end stands for it.
constexpr double kElementTolerance = 0.000001;

StationSearch::Range around(const StationSearch& search, double station) {
  return search.where([station](double row) { return !(row > station - kElementTolerance); },
                      [station](double row) { return !(row < station + kElementTolerance); });
}

void insertDistancesAndHorizontals(const StationSearch& search, tglsReport& report) {
  const auto holders =
      firstHolders(search, report.rows.size(), report.horElems, [&search](const tglsHorElem& element, auto take) {
        take(around(search, element.start));
        take(around(search, element.end));
      });
  insertDistanceRows(report);
  fillHorizontalColumns(holders, report);
}

/// Writes the vertical design into the notes: around each intersection point the radius in the row above it, the tangent
/// length in its own, the change of grade in the row below; in the middle of each tangent its grade in one row and its
/// length in the next.
///
/// A row is an intersection point by the first two letters of its name, so a label that stood there before hides it and
/// a sample line of such a name counts as one; templates in the field are built on the rows as they come out. The last
/// row closes the last tangent whatever its name.
class VerticalNotes {
 public:
  explicit VerticalNotes(tglsReport& report) : report_(report) {}

  void write() {
    const ArrayIndex last = report_.rows.size() - 1;
    for (ArrayIndex i = 0; i <= last; ++i)
      if (i == last || isIntersection(*report_.rows[i])) closeTangent(i, i == last);
  }

 private:
  [[nodiscard]] bool isIntersection(const tglsRow& row) const {
    return word_.size() >= 2 && row.name.size() >= 2 && row.name[0] == word_[0] && row.name[1] == word_[1];
  }

  void closeTangent(ArrayIndex row, bool isLast) {
    const tglsVerElem& element = *report_.verElems[tangent_];
    if (gradeChangeRow_ > 0)
      append(gradeChangeRow_, L", ", formatText(L"%s = %.2f", {gradeChange_, element.gradeChange}) + L"%");
    const ArrayIndex middle = middleRow(firstRow_, row);
    append(middle - 1, kJoiner, formatText(L"%s %.2f", {signWord(element.grade), std::abs(element.grade)}) + L"%");
    append(middle, kJoiner, formatText(L"%s %.2f m", {length_, element.length}));
    if (!isLast) {
      append(row - 1, kJoiner,
             element.radius < 0.0 ? formatText(L"%s = %.0f m", {crestRadius_, -element.radius})
                                  : formatText(L"%s = %.0f m", {sagRadius_, element.radius}));
      append(row, kJoiner, formatText(L"%s = %.2f m", {curveLength_, element.halfLength}));
      report_.verBreakRows.add(static_cast<std::int32_t>(row));
    }
    firstRow_ = gradeChangeRow_ = row + 1;
    ++tangent_;
  }

  [[nodiscard]] CString signWord(double grade) const {
    if (grade > 0.0) return rising_;
    if (grade < 0.0) return falling_;
    return {};
  }

  void append(ArrayIndex row, const wchar_t* joiner, const CString& text) {
    CString& notes = report_.rows[row]->notes;
    if (!notes.empty()) notes += joiner;
    notes += text;
  }

  /// In front of every note but the change of grade, which has ", ". The text form of the report shows the two apart
  /// behind a percent sign.
  static constexpr const wchar_t* kJoiner = L" ,";

  tglsReport& report_;
  ArrayIndex tangent_ = 0;
  ArrayIndex firstRow_ = 0;
  ArrayIndex gradeChangeRow_ = 0;
  const CString rising_ = getMessage(Message::Rise);
  const CString falling_ = getMessage(Message::Fall);
  const CString word_ = getMessage(Message::VerticalIntersection);
  const CString gradeChange_ = getMessage(Message::GradeChange);
  const CString length_ = getMessage(Message::TangentLength);
  const CString crestRadius_ = getMessage(Message::CrestRadius);
  const CString sagRadius_ = getMessage(Message::SagRadius);
  const CString curveLength_ = getMessage(Message::VerticalCurveTangent);
};

}  // namespace

void collectGlsRows(host::Host& host, const host::Ref<host::QmtDocument>& document,
                    const host::Ref<host::QmtDatabase>& database, const CString& siteName, const CString& alignmentName,
                    const CString& groupName, const CString& profileName, tglsReport& report) {
  host::Ref<host::QmtAlignment> alignment;
  findAlignment(document, database, siteName, alignmentName, alignment);
  addHorizontalElements(alignment, report);

  // Labels join rows while there are station rows only.
  StationRows rows(report);
  labelSampleLines(document, database, siteName, alignmentName, groupName, rows);
  OwnedList<tvert> points;
  double unread = 0.0;
  pvsa_lvx_getvelem(host::meansNoSite(siteName) ? CString() : siteName, alignmentName, profileName, unread,
                    points.get());
  addVerticalElements(points.get(), report);
  labelVerticalCurves(points.get(), rows);
  rows.finish();

  {
    CorridorScope corridors;
    readCorridorData(host, corridors.list, report);
  }

  const StationSearch search(report.rows);
  OwnedList<tverticalElement> chain;
  buildVerticalElements(points.get(), chain.get());
  fillElevations(chain.get(), search, report);
  fillOrdinates(search, report);

  insertDistancesAndHorizontals(search, report);
  VerticalNotes(report).write();
}

}  // namespace lvx::gls
