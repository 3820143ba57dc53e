#include "properties/properties.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <utility>

#include "civil/drawing_files.h"
#include "view/alignment_shape.h"
#include "view/plan_shapes.h"
#include "view/section_model.h"

namespace lvx::properties {

namespace {

using civil::Box;
using civil::Vec2;

constexpr double kPercentOfRatio = 100.0;

Value counted(std::size_t count) { return static_cast<double>(count); }
/// A text that isn't there is no value.
Value textValue(std::string_view text) { return text.empty() ? Value(std::monostate()) : Value(std::string(text)); }
Value numberValue(std::optional<double> number) { return number ? Value(*number) : Value(std::monostate()); }
Box placeBox(Vec2 place) { return {place.x, place.y, place.x, place.y}; }

std::string joined(const std::vector<std::string>& texts) {
  std::string all;
  for (const std::string& text : texts) all += (all.empty() ? "" : ", ") + text;
  return all;
}

/// Rows as they come.
class Rows {
 public:
  explicit Rows(std::vector<Row>& into) : rows_(into) {}
  Rows& add(Term term, Form form, Value value) {
    rows_.push_back({term, form, std::move(value)});
    return *this;
  }
  Rows& text(Term term, std::string_view text) { return add(term, Form::Text, textValue(text)); }
  Rows& count(Term term, std::size_t count) { return add(term, Form::Whole, counted(count)); }
  Rows& length(Term term, double length) { return add(term, Form::Length, length); }
  Rows& station(Term term, double station) { return add(term, Form::Station, station); }

 private:
  std::vector<Row>& rows_;
};

Table tableOf(Term title, std::vector<Column> columns, std::size_t rowCount,
              std::function<Value(std::size_t, std::size_t)> cell,
              std::function<std::optional<Box>(std::size_t)> place = {}) {
  return {title, std::move(columns), rowCount, std::move(cell), std::move(place)};
}

/// A row that is kept. Not from a list in braces, whose copies the compiler takes for uninitialised.
template <class... Values>
std::vector<Value> rowOf(Values&&... values) {
  std::vector<Value> row;
  row.reserve(sizeof...(values));
  (row.emplace_back(std::forward<Values>(values)), ...);
  return row;
}

/// A table whose values were taken when it was made.
Table keptTable(Term title, std::vector<Column> columns, std::vector<std::vector<Value>> rows,
                std::vector<std::optional<Box>> places = {}) {
  const auto kept = std::make_shared<const std::vector<std::vector<Value>>>(std::move(rows));
  std::function<std::optional<Box>(std::size_t)> place;
  if (!places.empty()) place = [places = std::move(places)](std::size_t row) { return places[row]; };
  return tableOf(
      title, std::move(columns), kept->size(),
      [kept](std::size_t row, std::size_t column) { return (*kept)[row][column]; }, std::move(place));
}

Value fileOf(const civil::Drawing& drawing, civil::FileNumber file) {
  if (file == civil::kNoFile) return Term::MadeHere;
  return textValue(civil::pathOf(drawing, file));
}

std::optional<Box> placeOn(const civil::AlignmentObject* alignment, double station, double offset = 0.0) {
  if (alignment == nullptr) return std::nullopt;
  const auto pose = alignment->geometry.pointLocation(station, offset);
  return pose ? std::optional(placeBox(pose->point)) : std::nullopt;
}

/// Whether the pair is there at all: a drawing may have no alignment.
std::optional<civil::StationOffset> footOf(const civil::AlignmentObject* alignment, Vec2 place) {
  return alignment == nullptr ? std::nullopt : alignment->geometry.stationOffset(place);
}

// ---------------------------------------------------------------- points

Value numberOrName(const civil::Point& point) { return static_cast<double>(point.number); }

std::vector<Column> pointColumns() {
  return {{Term::Number, Form::Whole},         {Term::Name, Form::Text},
          {Term::Easting, Form::Length},       {Term::Northing, Form::Length},
          {Term::Elevation, Form::Length},     {Term::RawDescription, Form::Text},
          {Term::FullDescription, Form::Text}, {Term::Station, Form::Station},
          {Term::Offset, Form::Length},        {Term::File, Form::Text}};
}

Value pointCell(const Subject& subject, const civil::Point& point, Term column) {
  switch (column) {
    case Term::Number:
      return numberOrName(point);
    case Term::Name:
      return textValue(point.texts.name());
    case Term::Easting:
      return point.position.x;
    case Term::Northing:
      return point.position.y;
    case Term::Elevation:
      return point.hasElevation ? Value(point.position.z) : Value();
    case Term::RawDescription:
      return textValue(point.texts.description());
    case Term::FullDescription:
      return textValue(point.texts.fullDescription());
    case Term::File:
      return fileOf(subject.drawing, point.file);
    default: {
      const auto foot = footOf(subject.alignment, {point.position.x, point.position.y});
      if (!foot) return {};
      return column == Term::Station ? foot->station : foot->offset;
    }
  }
}

/// `pointAt` gives the point of a row, or null for one that the drawing hasn't got.
template <class PointAt, class NumberAt>
Table pointTable(const Subject& subject, std::size_t count, PointAt pointAt, NumberAt numberAt) {
  const std::vector<Column> columns = pointColumns();
  return tableOf(
      Term::Points, columns, count,
      [subject, columns, pointAt, numberAt](std::size_t row, std::size_t column) -> Value {
        const civil::Point* const point = pointAt(row);
        if (point != nullptr) return pointCell(subject, *point, columns[column].term);
        return columns[column].term == Term::Number ? Value(static_cast<double>(numberAt(row))) : Value();
      },
      [pointAt](std::size_t row) -> std::optional<Box> {
        const civil::Point* const point = pointAt(row);
        if (point == nullptr) return std::nullopt;
        return placeBox({point->position.x, point->position.y});
      });
}

void tell(const Subject& subject, const civil::Point& point, Properties& told) {
  told.kind = Term::Point;
  told.name =
      point.texts.name().empty() ? textOf(numberOrName(point), Form::Whole, {}) : std::string(point.texts.name());
  Rows rows(told.rows);
  for (const Column& column : pointColumns()) {
    if (column.term == Term::Station) {
      if (subject.alignment == nullptr) continue;
      rows.text(Term::Alignment, subject.alignment->name);
    }
    if (column.term == Term::Offset && subject.alignment == nullptr) continue;
    rows.add(column.term, column.form, pointCell(subject, point, column.term));
  }
}

void tell(const Subject& subject, const civil::PointGroup& group, Properties& told) {
  told.kind = Term::PointGroup;
  told.name = group.name;
  Rows rows(told.rows);
  rows.text(Term::Name, group.name)
      .text(Term::Description, group.description)
      .count(Term::Points, group.numbers.size());
  if (!group.numbersElsewhere.empty()) rows.count(Term::NumbersElsewhere, group.numbersElsewhere.size());
  rows.add(Term::File, Form::Text, fileOf(subject.drawing, group.file));
  told.tables.push_back(pointTable(
      subject, group.numbers.size(),
      [&group, &index = subject.index](std::size_t row) { return index.pointByNumber(group.numbers[row]); },
      [&group](std::size_t row) { return group.numbers[row]; }));
}

// ---------------------------------------------------------------- alignments

Term kindTerm(civil::ElementKind kind) {
  switch (kind) {
    case civil::ElementKind::Line:
      return Term::Line;
    case civil::ElementKind::Arc:
      return Term::Arc;
    case civil::ElementKind::Clothoid:
      return Term::Clothoid;
    case civil::ElementKind::Bloss:
      return Term::Bloss;
    case civil::ElementKind::Cosine:
      return Term::Cosine;
    case civil::ElementKind::Biquadratic:
      return Term::Biquadratic;
    case civil::ElementKind::Sinusoid:
      return Term::Sinusoid;
  }
  return Term::Line;
}

Value radiusOf(double curvature) {
  return curvature == 0.0 ? std::numeric_limits<double>::infinity() : 1.0 / std::abs(curvature);
}

Value elementCell(const civil::AlignmentObject& alignment, std::size_t row, Term column) {
  const civil::Element element = alignment.geometry.elements()[row];
  const bool isLine = element.kind == civil::ElementKind::Line;
  const auto end = [&] { return element.endPose().point; };
  switch (column) {
    case Term::Number:
      return counted(row + 1);
    case Term::Type:
      return kindTerm(element.kind);
    case Term::StartStation:
      return alignment.geometry.stationOfElement(row);
    case Term::Length:
      return element.length;
    case Term::Turn: {
      const double curvature = std::abs(element.endCurvature) > std::abs(element.startCurvature)
                                   ? element.endCurvature
                                   : element.startCurvature;
      if (isLine || curvature == 0.0) return {};
      return curvature > 0.0 ? Term::Left : Term::Right;
    }
    case Term::RadiusIn:
      return isLine ? Value() : radiusOf(element.startCurvature);
    case Term::RadiusOut:
      return isLine ? Value() : radiusOf(element.endCurvature);
    case Term::ClothoidParameter: {
      const double change = std::abs(element.endCurvature - element.startCurvature);
      if (element.kind != civil::ElementKind::Clothoid || change == 0.0) return {};
      return std::sqrt(element.length / change);
    }
    case Term::Azimuth:
      return civil::azimuthOf(element.direction);
    case Term::EastStart:
      return element.start.x;
    case Term::NorthStart:
      return element.start.y;
    case Term::EastEnd:
      return end().x;
    default:
      return end().y;
  }
}

Table elementTable(const civil::AlignmentObject& alignment) {
  const std::vector<Column> columns = {{Term::Number, Form::Whole},
                                       {Term::Type, Form::Text},
                                       {Term::StartStation, Form::Station},
                                       {Term::Length, Form::Length},
                                       {Term::RadiusIn, Form::Length},
                                       {Term::RadiusOut, Form::Length},
                                       {Term::Turn, Form::Text},
                                       {Term::ClothoidParameter, Form::Length},
                                       {Term::Azimuth, Form::Gon},
                                       {Term::EastStart, Form::Length},
                                       {Term::NorthStart, Form::Length},
                                       {Term::EastEnd, Form::Length},
                                       {Term::NorthEnd, Form::Length}};
  return tableOf(
      Term::Elements, columns, alignment.geometry.elements().size(),
      [&alignment, columns](std::size_t row, std::size_t column) {
        return elementCell(alignment, row, columns[column].term);
      },
      [&alignment](std::size_t row) -> std::optional<Box> {
        const civil::Element element = alignment.geometry.elements()[row];
        Box box;
        constexpr int kPlaces = 8;  // as many as a picture of it needs
        for (int i = 0; i <= kPlaces; ++i) box.add(element.poseAt(element.length * i / kPlaces).point);
        return box;
      });
}

Table profileTable(const civil::AlignmentObject& alignment) {
  return tableOf(Term::Profiles,
                 {{Term::Name, Form::Text},
                  {Term::Type, Form::Text},
                  {Term::StartStation, Form::Station},
                  {Term::EndStation, Form::Station},
                  {Term::Points, Form::Whole}},
                 alignment.profiles.size(), [&alignment](std::size_t row, std::size_t column) -> Value {
                   const civil::ProfileObject& object = alignment.profiles[row];
                   switch (column) {
                     case 0:
                       return textValue(object.name);
                     case 1:
                       return object.profile.isGround() ? Term::Ground : Term::Design;
                     case 2:
                       return object.profile.startStation();
                     case 3:
                       return object.profile.endStation();
                     default:
                       return counted(object.profile.points().size());
                   }
                 });
}

Table equationTable(const civil::AlignmentObject& alignment) {
  const std::vector<civil::StationEquation>& equations = alignment.stationEquations.orNone();
  return tableOf(
      Term::Equations,
      {{Term::Station, Form::Station}, {Term::StationBack, Form::Station}, {Term::StationAhead, Form::Station}},
      equations.size(),
      [&equations](std::size_t row, std::size_t column) {
        const civil::StationEquation& equation = equations[row];
        if (column == 0) return Value(equation.internalStation);
        return column == 1 ? numberValue(equation.backStation) : Value(equation.aheadStation);
      },
      [&alignment, &equations](std::size_t row) { return placeOn(&alignment, equations[row].internalStation); });
}

const civil::Site* siteOf(const civil::Drawing& drawing, const civil::AlignmentObject& alignment) {
  for (const civil::Site& site : drawing.sites)
    for (const auto& candidate : site.alignments)
      if (candidate.get() == &alignment) return &site;
  return nullptr;
}

void tell(const Subject& subject, const civil::AlignmentObject& alignment, Properties& told) {
  told.kind = Term::Alignment;
  told.name = alignment.name;
  const civil::Alignment& geometry = alignment.geometry;
  Rows rows(told.rows);
  rows.text(Term::Name, alignment.name).text(Term::Description, std::string_view(alignment.description));
  if (const civil::Site* const site = siteOf(subject.drawing, alignment)) rows.text(Term::Site, site->name);
  rows.station(Term::StartStation, geometry.startStation())
      .station(Term::EndStation, geometry.endStation())
      .length(Term::Length, geometry.length())
      .count(Term::Elements, geometry.elements().size())
      .count(Term::Profiles, alignment.profiles.size())
      .count(Term::SampleLineGroups, alignment.sampleLineGroups.size())
      .add(Term::File, Form::Text, fileOf(subject.drawing, alignment.file));
  told.tables.push_back(elementTable(alignment));
  if (!alignment.profiles.empty()) told.tables.push_back(profileTable(alignment));
  if (!alignment.stationEquations.orNone().empty()) told.tables.push_back(equationTable(alignment));
}

void tell(const Subject& subject, const civil::Site& site, Properties& told) {
  told.kind = Term::Site;
  told.name = site.name;
  Rows(told.rows)
      .text(Term::Name, site.name)
      .text(Term::Description, site.description)
      .count(Term::Alignments, site.alignments.size())
      .add(Term::File, Form::Text, fileOf(subject.drawing, site.file));
  told.tables.push_back(tableOf(
      Term::Alignments,
      {{Term::Name, Form::Text},
       {Term::StartStation, Form::Station},
       {Term::EndStation, Form::Station},
       {Term::Length, Form::Length},
       {Term::Elements, Form::Whole}},
      site.alignments.size(),
      [&site](std::size_t row, std::size_t column) -> Value {
        const civil::AlignmentObject& alignment = *site.alignments[row];
        switch (column) {
          case 0:
            return textValue(alignment.name);
          case 1:
            return alignment.geometry.startStation();
          case 2:
            return alignment.geometry.endStation();
          case 3:
            return alignment.geometry.length();
          default:
            return counted(alignment.geometry.elements().size());
        }
      },
      [&site](std::size_t row) -> std::optional<Box> {
        const Box box = view::boxAround(site.alignments[row]->geometry);
        return box.isEmpty() ? std::nullopt : std::optional(box);
      }));
}

// ---------------------------------------------------------------- profiles

std::optional<double> gradeBetween(const civil::VerticalPoint& from, const civil::VerticalPoint& to) {
  const double run = to.station - from.station;
  return run > 0.0 ? std::optional((to.elevation - from.elevation) / run) : std::nullopt;
}

Value curveKind(civil::VerticalCurveKind kind) {
  switch (kind) {
    case civil::VerticalCurveKind::None:
      return {};
    case civil::VerticalCurveKind::Parabola:
      return Term::Parabola;
    case civil::VerticalCurveKind::UnsymmetricParabola:
      return Term::UnsymmetricParabola;
    case civil::VerticalCurveKind::Circle:
      return Term::Circle;
  }
  return {};
}

/// The points of intersection of a design with its curves.
Table intersectionTable(const civil::AlignmentObject& alignment, const civil::Profile& profile) {
  std::vector<std::vector<Value>> rows;
  std::vector<std::optional<Box>> places;
  const auto points = profile.points();
  const std::vector<civil::VerticalCurve> curves = profile.curves();
  auto curve = curves.begin();
  for (std::size_t i = 0; i < points.size(); ++i) {
    const civil::VerticalPoint point = points[i];
    const auto in = i > 0 ? gradeBetween(points[i - 1], point) : std::nullopt;
    const auto out = i + 1 < points.size() ? gradeBetween(point, points[i + 1]) : std::nullopt;
    std::vector<Value> row =
        rowOf(counted(i + 1), point.station, point.elevation, numberValue(in), numberValue(out), curveKind(point.kind));
    while (curve != curves.end() && curve->point < i) ++curve;
    if (curve != curves.end() && curve->point == i) {
      const double length = curve->endStation - curve->startStation;
      const double change = std::abs(curve->gradeOut - curve->gradeIn);
      Value radius;
      if (point.kind == civil::VerticalCurveKind::Circle) radius = std::abs(point.radius);
      if (point.kind == civil::VerticalCurveKind::Parabola && change > 0.0) radius = length / change;
      const Value k = change > 0.0 ? Value(length / (change * kPercentOfRatio)) : Value();
      row.emplace_back(length);
      row.push_back(radius);
      row.push_back(k);
      row.emplace_back(curve->startStation);
      row.emplace_back(curve->endStation);
    }
    row.resize(11);
    rows.push_back(std::move(row));
    places.push_back(placeOn(&alignment, point.station));
  }
  return keptTable(Term::IntersectionPoints,
                   {{Term::Number, Form::Whole},
                    {Term::Station, Form::Station},
                    {Term::Elevation, Form::Length},
                    {Term::GradeIn, Form::Percent},
                    {Term::GradeOut, Form::Percent},
                    {Term::Curve, Form::Text},
                    {Term::Length, Form::Length},
                    {Term::Radius, Form::Length},
                    {Term::KValue, Form::Factor},
                    {Term::CurveStart, Form::Station},
                    {Term::CurveEnd, Form::Station}},
                   std::move(rows), std::move(places));
}

/// Whether nothing is known of the ground between a point and the one behind it.
bool isGapBehind(const civil::Profile& profile, double from, double to) {
  const auto gaps = profile.gaps();
  const auto gap = std::lower_bound(gaps.begin(), gaps.end(), from, [](const civil::ProfileGap& a, double station) {
    return a.startStation < station;
  });
  return gap != gaps.end() && gap->startStation <= from && gap->endStation >= to;
}

Table groundTable(const civil::AlignmentObject& alignment, const civil::Profile& profile) {
  return tableOf(
      Term::GroundPoints,
      {{Term::Number, Form::Whole},
       {Term::Station, Form::Station},
       {Term::Elevation, Form::Length},
       {Term::GradeOut, Form::Percent}},
      profile.points().size(),
      [&profile](std::size_t row, std::size_t column) -> Value {
        const auto points = profile.points();
        const civil::VerticalPoint point = points[row];
        if (column == 0) return counted(row + 1);
        if (column == 1) return point.station;
        if (column == 2) return point.elevation;
        if (row + 1 == points.size()) return {};
        const civil::VerticalPoint next = points[row + 1];
        if (isGapBehind(profile, point.station, next.station)) return {};
        return numberValue(gradeBetween(point, next));
      },
      [&alignment, &profile](std::size_t row) { return placeOn(&alignment, profile.points()[row].station); });
}

void tell(const Subject& subject, const civil::ProfileObject& object, const civil::AlignmentObject& alignment,
          Properties& told) {
  told.kind = Term::Profile;
  told.name = object.name;
  const civil::Profile& profile = object.profile;
  Rows rows(told.rows);
  rows.text(Term::Name, object.name)
      .text(Term::Description, std::string_view(object.description))
      .add(Term::Type, Form::Text, profile.isGround() ? Term::Ground : Term::Design)
      .text(Term::Alignment, alignment.name)
      .station(Term::StartStation, profile.startStation())
      .station(Term::EndStation, profile.endStation())
      .count(Term::Points, profile.points().size());
  if (profile.isGround())
    rows.count(Term::Gaps, profile.gapCount());
  else
    rows.count(Term::Curves, profile.curves().size());
  if (!profile.isEmpty()) {
    // The points of intersection, between which nothing is higher, lower or steeper than they are.
    double least = std::numeric_limits<double>::infinity();
    double greatest = -least;
    double leastGrade = least;
    double greatestGrade = greatest;
    std::optional<civil::VerticalPoint> before;
    for (const civil::VerticalPoint point : profile.points()) {
      least = std::min(least, point.elevation);
      greatest = std::max(greatest, point.elevation);
      const auto grade =
          before && !isGapBehind(profile, before->station, point.station) ? gradeBetween(*before, point) : std::nullopt;
      leastGrade = std::min(leastGrade, grade.value_or(leastGrade));
      greatestGrade = std::max(greatestGrade, grade.value_or(greatestGrade));
      before = point;
    }
    rows.length(Term::LeastElevation, least).length(Term::GreatestElevation, greatest);
    if (leastGrade <= greatestGrade)
      rows.add(Term::LeastGrade, Form::Percent, leastGrade).add(Term::GreatestGrade, Form::Percent, greatestGrade);
  }
  rows.add(Term::File, Form::Text, fileOf(subject.drawing, object.file));
  told.tables.push_back(profile.isGround() ? groundTable(alignment, profile) : intersectionTable(alignment, profile));
}

// ---------------------------------------------------------------- sample lines and sections

struct Reach {
  double left = 0.0;
  double right = 0.0;
};
std::optional<Reach> reachOf(const civil::SampleLine& line, const civil::AlignmentObject& alignment) {
  Reach reach{std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()};
  for (const Vec2 vertex : line.vertices) {
    const auto foot = alignment.geometry.stationOffset(vertex);
    if (!foot) return std::nullopt;
    reach.left = std::min(reach.left, foot->offset);
    reach.right = std::max(reach.right, foot->offset);
  }
  return line.vertices.empty() ? std::nullopt : std::optional(reach);
}

std::optional<Box> boxOfLine(const civil::SampleLine& line) {
  const Box box = view::boxAround(line.vertices);
  return box.isEmpty() ? std::nullopt : std::optional(box);
}

void tell(const Subject& subject, const civil::SampleLineGroup& group, const civil::AlignmentObject& alignment,
          Properties& told) {
  told.kind = Term::SampleLineGroup;
  told.name = group.name;
  Rows rows(told.rows);
  rows.text(Term::Name, group.name)
      .text(Term::Description, group.description)
      .text(Term::Alignment, alignment.name)
      .count(Term::SampleLines, group.lines.size());
  if (!group.lines.empty()) {
    const auto [first, last] = std::minmax_element(
        group.lines.begin(), group.lines.end(),
        [](const civil::SampleLine& a, const civil::SampleLine& b) { return a.station < b.station; });
    rows.station(Term::StartStation, first->station).station(Term::EndStation, last->station);
  }
  rows.add(Term::File, Form::Text, fileOf(subject.drawing, group.file));
  told.tables.push_back(tableOf(
      Term::SampleLines,
      {{Term::Name, Form::Text},
       {Term::Station, Form::Station},
       {Term::OffsetLeft, Form::Length},
       {Term::OffsetRight, Form::Length},
       {Term::Vertices, Form::Whole}},
      group.lines.size(),
      [&group, &alignment](std::size_t row, std::size_t column) -> Value {
        const civil::SampleLine& line = group.lines[row];
        if (column == 0) return textValue(line.name);
        if (column == 1) return line.station;
        if (column == 4) return counted(line.vertices.size());
        const auto reach = reachOf(line, alignment);
        if (!reach) return {};
        return column == 2 ? reach->left : reach->right;
      },
      [&group](std::size_t row) { return boxOfLine(group.lines[row]); }));
}

/// The ground along the line, with where its points lie on the alignment's normal.
Table groundOfSection(const view::SectionModel& section, const civil::AlignmentObject& alignment) {
  std::vector<std::vector<Value>> rows;
  std::vector<std::optional<Box>> places;
  for (const view::SectionGround& ground : section.grounds)
    for (const view::Line& line : ground.lines)
      for (const Vec2 point : line) {
        rows.push_back(rowOf(textValue(ground.name), point.x, point.y));
        places.push_back(placeOn(&alignment, section.station, point.x));
      }
  return keptTable(Term::GroundPoints,
                   {{Term::Surface, Form::Text}, {Term::Offset, Form::Length}, {Term::Elevation, Form::Length}},
                   std::move(rows), std::move(places));
}

Table corridorOfSection(const view::SectionModel& section, const civil::AlignmentObject& alignment) {
  std::vector<std::vector<Value>> rows;
  std::vector<std::optional<Box>> places;
  for (const view::SectionCorridor& corridor : section.corridors)
    for (const view::SectionShape& part : corridor.parts)
      for (const view::SectionPlace& point : part.points) {
        rows.push_back(rowOf(textValue(corridor.name), textValue(joined(part.codes)), textValue(joined(point.codes)),
                             point.place.x, point.place.y));
        places.push_back(placeOn(&alignment, section.station, point.place.x));
      }
  return keptTable(Term::CorridorPoints,
                   {{Term::Corridor, Form::Text},
                    {Term::Part, Form::Text},
                    {Term::Codes, Form::Text},
                    {Term::Offset, Form::Length},
                    {Term::Elevation, Form::Length}},
                   std::move(rows), std::move(places));
}

void tell(const Subject& subject, const civil::SampleLine& line, const civil::AlignmentObject& alignment,
          Properties& told) {
  told.kind = Term::SampleLine;
  told.name = line.name;
  const auto section = view::sectionOf(subject.drawing, line.handle);
  Rows rows(told.rows);
  rows.text(Term::Name, line.name);
  if (section) rows.text(Term::Group, section->groupName);
  rows.text(Term::Alignment, alignment.name).station(Term::Station, line.station);
  if (const auto reach = reachOf(line, alignment))
    rows.length(Term::OffsetLeft, reach->left).length(Term::OffsetRight, reach->right);
  rows.count(Term::Vertices, line.vertices.size());
  if (section) {
    told.tables.push_back(groundOfSection(*section, alignment));
    if (!section->corridors.empty()) told.tables.push_back(corridorOfSection(*section, alignment));
  }
  told.tables.push_back(tableOf(
      Term::Vertices,
      {{Term::Number, Form::Whole},
       {Term::Easting, Form::Length},
       {Term::Northing, Form::Length},
       {Term::Station, Form::Station},
       {Term::Offset, Form::Length}},
      line.vertices.size(),
      [&line, &alignment](std::size_t row, std::size_t column) -> Value {
        const Vec2 vertex = line.vertices[row];
        if (column == 0) return counted(row + 1);
        if (column == 1) return vertex.x;
        if (column == 2) return vertex.y;
        const auto foot = alignment.geometry.stationOffset(vertex);
        if (!foot) return {};
        return column == 3 ? foot->station : foot->offset;
      },
      [&line](std::size_t row) { return placeBox(line.vertices[row]); }));
}

// ---------------------------------------------------------------- surfaces

void tell(const Subject& subject, const civil::SurfaceObject& object, Properties& told) {
  told.kind = Term::Surface;
  told.name = object.name;
  const civil::TinSurface::Counts counts = object.surface.counts();
  Rows rows(told.rows);
  rows.text(Term::Name, object.name)
      .text(Term::Description, object.description)
      .count(Term::Points, counts.points)
      .count(Term::Triangles, counts.triangles);
  if (counts.degenerate != 0) rows.count(Term::TrianglesWithoutArea, counts.degenerate);
  if (counts.overlappingEdges != 0) rows.count(Term::EdgesOfMany, counts.overlappingEdges);
  if (!object.surface.isEmpty()) {
    const SurfaceFigures figures = subject.figures ? subject.figures(object) : figuresOf(object.surface);
    rows.add(Term::Area, Form::Area, figures.area)
        .add(Term::Area3d, Form::Area, figures.area3d)
        .length(Term::LeastElevation, figures.leastElevation)
        .length(Term::GreatestElevation, figures.greatestElevation)
        .length(Term::MeanElevation, figures.meanElevation)
        .length(Term::BorderLength, figures.borderLength)
        .add(Term::LeastSlope, Form::Percent, figures.leastSlope)
        .add(Term::GreatestSlope, Form::Percent, figures.greatestSlope)
        .length(Term::LeastEasting, figures.box.minX)
        .length(Term::GreatestEasting, figures.box.maxX)
        .length(Term::LeastNorthing, figures.box.minY)
        .length(Term::GreatestNorthing, figures.box.maxY);
  }
  rows.add(Term::File, Form::Text, fileOf(subject.drawing, object.file));
}

// ---------------------------------------------------------------- corridors

std::size_t sectionCount(const civil::Baseline& baseline) {
  std::size_t count = 0;
  for (const civil::Region& region : baseline.regions) count += region.sections.size();
  return count;
}

/// Sections are exchanged when a report adds some, so what is told of them is taken at once.
Table sectionTable(const civil::Corridor& corridor) {
  std::vector<std::vector<Value>> rows;
  std::vector<std::optional<Box>> places;
  for (const civil::Baseline& baseline : corridor.baselines)
    for (const civil::Region& region : baseline.regions)
      for (const civil::CorridorSection& section : region.sections) {
        std::size_t points = 0;
        for (const civil::SectionPart& part : section.parts) points += part.points.size();
        rows.push_back(rowOf(section.station, textValue(section.label),
                             section.origin == civil::SectionOrigin::Given ? Term::Given : Term::Computed,
                             counted(section.parts.size()), counted(points), textValue(baseline.name),
                             textValue(region.name)));
        places.push_back(placeOn(baseline.alignment, section.station));
      }
  return keptTable(Term::Sections,
                   {{Term::Station, Form::Station},
                    {Term::Name, Form::Text},
                    {Term::Origin, Form::Text},
                    {Term::Parts, Form::Whole},
                    {Term::Points, Form::Whole},
                    {Term::Baseline, Form::Text},
                    {Term::Region, Form::Text}},
                   std::move(rows), std::move(places));
}

Table baselineTable(const civil::Corridor& corridor) {
  std::vector<std::vector<Value>> rows;
  for (const civil::Baseline& baseline : corridor.baselines) {
    std::vector<Value> row =
        rowOf(textValue(baseline.name), baseline.alignment == nullptr ? Value() : textValue(baseline.alignment->name),
              baseline.profile == nullptr ? Value() : textValue(baseline.profile->name),
              counted(baseline.regions.size()), counted(sectionCount(baseline)));
    Value start;
    Value end;
    for (const civil::Region& region : baseline.regions) {
      start = std::min(region.startStation,
                       std::holds_alternative<double>(start) ? std::get<double>(start) : region.startStation);
      end =
          std::max(region.endStation, std::holds_alternative<double>(end) ? std::get<double>(end) : region.endStation);
    }
    row.push_back(start);
    row.push_back(end);
    rows.push_back(std::move(row));
  }
  return keptTable(Term::Baselines,
                   {{Term::Name, Form::Text},
                    {Term::Alignment, Form::Text},
                    {Term::Profile, Form::Text},
                    {Term::Regions, Form::Whole},
                    {Term::Sections, Form::Whole},
                    {Term::StartStation, Form::Station},
                    {Term::EndStation, Form::Station}},
                   std::move(rows));
}

void tell(const Subject& subject, const civil::Corridor& corridor, Properties& told) {
  told.kind = Term::Corridor;
  told.name = corridor.name;
  std::size_t sections = 0;
  for (const civil::Baseline& baseline : corridor.baselines) sections += sectionCount(baseline);
  Rows(told.rows)
      .text(Term::Name, corridor.name)
      .text(Term::Description, corridor.description)
      .count(Term::Baselines, corridor.baselines.size())
      .count(Term::Sections, sections)
      .add(Term::File, Form::Text, fileOf(subject.drawing, corridor.file));
  told.tables.push_back(sectionTable(corridor));
  told.tables.push_back(baselineTable(corridor));
}

// ---------------------------------------------------------------- the drawing

void tellDrawing(const Subject& subject, Properties& told) {
  const civil::Drawing& drawing = subject.drawing;
  std::size_t alignments = drawing.siteless.alignments.size();
  for (const civil::Site& site : drawing.sites) alignments += site.alignments.size();
  Rows(told.rows)
      .text(Term::Path, drawing.path)
      .text(Term::Unit, drawing.linearUnit)
      .count(Term::Files, drawing.addedFiles.size() + 1)
      .count(Term::Sites, drawing.sites.size())
      .count(Term::Alignments, alignments)
      .count(Term::Surfaces, drawing.surfaces.size())
      .count(Term::Points, drawing.points.size())
      .count(Term::PointGroups, drawing.pointGroups.size())
      .count(Term::Corridors, drawing.corridors.size());
  if (drawing.points.empty()) return;
  told.tables.push_back(pointTable(
      subject, drawing.points.size(), [&drawing](std::size_t row) { return &drawing.points[row]; },
      [](std::size_t) { return 0; }));
}

}  // namespace

Properties propertiesOf(const Subject& subject, civil::Handle handle) {
  Properties told;
  const auto entry = handle == 0 ? std::nullopt : subject.index.byHandle(handle);
  if (!entry) {
    tellDrawing(subject, told);
    return told;
  }
  std::visit(
      [&](const auto* object) {
        if constexpr (requires { tell(subject, *object, *entry->alignment, told); })
          tell(subject, *object, *entry->alignment, told);
        else
          tell(subject, *object, told);
      },
      entry->object);
  return told;
}

}  // namespace lvx::properties
