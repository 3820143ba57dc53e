#include "plain_gls/plain_gls.h"

#include <cmath>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "gls/alignment_elements.h"
#include "host/dialog_controls.h"
#include "projection/sample_line_collector.h"
#include "services/message_catalogue.h"
#include "standin_platform/c_locale_scope.h"

namespace lvx::gls::plain {

namespace {

using framework::tpt3;
using framework::tpt3list;
using services::Message;

CString message(Message wanted) { return services::getMessage(wanted); }

CString number(const char* format, double value) {
  char buffer[400];
  const standin_platform::CLocaleScope pointAsDecimalSign;
  std::snprintf(buffer, sizeof buffer, format, value);
  const std::string narrow = buffer;
  return {narrow.begin(), narrow.end()};
}

CString label(Message wanted, long count) { return message(wanted) + std::to_wstring(count); }

// ---------------------------------------------------------------- rows of the alignment

struct Counters {
  long arc = 1;
  long clothoid = 1;
  long line = 1;
};

/// The label table, a line of it at a time. -1 is no element.
CString startName(int type, int before, Counters& n) {
  if (type == 0 && before == 0) return L"ILL" + std::to_wstring(n.line - 1) + L"-" + std::to_wstring(n.line);
  if (type == 0 && before == 1) return label(Message::ArcEnd, n.arc++);
  if (type == 0) return label(Message::ClothoidEnd, n.clothoid++);
  if (type == 1 && before == 1) {
    ++n.arc;
    return label(Message::ArcEnd, n.arc - 1) + L", " + label(Message::ArcStart, n.arc);
  }
  if (type == 1) return label(Message::ArcStart, n.arc);
  if (before == -1 || before == 0) return label(Message::ClothoidStart, n.clothoid);
  if (before == 1) return label(Message::ArcEnd, n.arc++);
  if (type == 3 && before == 2) {
    ++n.arc;
    return label(Message::ArcStart, n.arc - 1) + L", " + label(Message::ArcEnd, n.arc - 1);
  }
  ++n.clothoid;
  return label(Message::ClothoidEnd, n.clothoid - 1) + L", " + label(Message::ClothoidStart, n.clothoid);
}

void horizontals(const GlsCase& made, tglsReport& report) {
  double running = made.startStation;
  Counters n;
  for (std::size_t i = 0; i < made.elements.size(); ++i) {
    const host::taxel& e = made.elements[i];
    auto* h = new tglsHorElem;
    report.horElems.add(h);
    h->start = running;
    h->end = running + e.length;
    h->length = e.length;
    if (e.type == 0) h->parameter = 0.0;
    if (e.type == 1) h->parameter = std::fabs(e.startRadius);
    if (e.type == 2 || e.type == 3) {
      const double r1 = std::fabs(e.startRadius);
      const double r2 = std::fabs(e.endRadius);
      h->parameter = std::sqrt(r2 == 0.0 ? e.length * r1 : e.length * r1 / (1.0 - r1 / r2));
    }
    if (e.type >= 0 && e.type <= 3) {
      h->type = e.type;
      if (!(e.type == 0 && i == 0)) {
        auto* row = new tglsRow;
        report.rows.add(row);
        row->station = h->start;
        row->name = startName(e.type, i == 0 ? -1 : made.elements[i - 1].type == -1 ? 9 : made.elements[i - 1].type, n);
      }
    }
    if (e.type == 0) ++n.line;
    double low = e.startDirection;
    double high = e.endDirection;
    if (high < low) std::swap(low, high);
    const double one = high - low;
    const double other = 6.283185307179586 - high + low;
    h->angle = (other < one ? other : one) * 63.66197723675813;
    running += e.length;
  }
  auto* closing = new tglsRow;
  std::unique_ptr<tglsRow> guard(closing);
  closing->station = report.horElems[report.horElems.size() - 1]->end;
  const int last = made.elements.back().type;
  if (last == 1) closing->name = label(Message::ArcEnd, n.arc);
  if (last > 1) closing->name = label(Message::ClothoidEnd, n.clothoid);
  report.rows.add(guard.release());
}

// ---------------------------------------------------------------- corridors

bool oneOf(host::QmtCodes& codes, const CString& a, const CString& b) {
  for (int i = 0; i < codes.count(); ++i)
    if (codes.item(i) == a || codes.item(i) == b) return true;
  return false;
}

void section(test::FakeBaseline& baseline, tpt3& entry, tpt3list& p, tglsReport& report) {
  const double t = entry.first;
  p.empty();
  const auto found = baseline.sectionAt(t);
  if (found) {
    const auto parts = found->parts();
    for (int i = 0; i < parts->count(); ++i) {
      const auto part = parts->item(i);
      if (!oneOf(*part->codes(), L"Belag", L"Pave")) continue;
      const auto points = part->points();
      bool passes = false;
      for (int k = 0; k < points->count(); ++k)
        passes = oneOf(*points->item(k)->codes(), L"Fahrspurrand_Au\u00DFen", L"ETW");
      if (!passes) continue;
      for (int k = 0; k < points->count(); ++k) {
        const auto where = points->item(k)->stationOffsetElevation();
        if (where.dimensions != 1 || where.lowerBound != 0 || where.values.size() != 3) continue;
        const double ps = where.values[0];
        const double po = where.values[1];
        const double z = where.values[2] + (baseline.profileObject ? baseline.profileObject->elevationAt(ps) : 0.0);
        int at = 0;
        while (at < p.count() && po >= p[at].second - 0.000001) ++at;
        if (at > 0 && std::fabs(p[at - 1].second - po) <= 0.0000001) continue;
        p.insert(at, {ps, po, z});
      }
    }
  }
  if (p.count() < 2) return;
  const int e = p.count() - 1;
  const double l = p[0].second < 0 ? (p[1].third - p[0].third) * 100 / (p[0].second - p[1].second) : 0.0;
  const double r = p[e].second > 0 ? (p[e].third - p[e - 1].third) * 100 / (p[e].second - p[e - 1].second) : 0.0;
  entry = {t, l, r};
  const tpt3 third = p.stored(2);
  for (tglsRow* row : report.rows) {
    if (!(row->station + 0.000001 > p[0].first && p[0].first > row->station - 0.000001)) continue;
    row->crossFallLeft = l;
    row->crossFallRight = r;
    row->widthLeft = std::fabs(p[0].second);
    row->widthRight = std::fabs(third.second);
    row->heightLeft = p[0].third - p[1].third;
    row->heightRight = third.third - p[1].third;
    row->edgeElevationLeft = p[0].third;
    row->edgeElevationRight = third.third;
    row->elevation = p[1].third;
  }
}

// ---------------------------------------------------------------- profile

void verticals(const std::vector<host::tvert>& p, tglsReport& report) {
  const auto n = static_cast<long>(p.size());
  for (long k = 1; k < n; ++k) {
    const host::tvert& at = p[static_cast<std::size_t>(k)];
    const host::tvert& before = p[static_cast<std::size_t>(k - 1)];
    auto* v = new tglsVerElem;
    report.verElems.add(v);
    v->gradeChange = k == 1 ? 0.0 : std::fabs(at.gradeIn - before.gradeIn) * 100;
    v->grade = at.gradeIn * 100;
    v->length = std::fabs(at.station - before.station);
    if (k < n - 1) {
      v->type = 1;
      v->curveStart = at.station - at.halfLength;
      v->curveEnd = at.station + at.halfLength;
      v->radius = at.gradeIn > at.gradeOut ? -at.radius : at.radius;
      v->halfLength = at.halfLength;
    }
  }
  for (long k = 1; k <= n - 2; ++k) {
    const host::tvert& at = p[static_cast<std::size_t>(k)];
    addStationLabel(label(Message::VerticalCurveStart, k), at.station - at.halfLength, report);
    addStationLabel(label(Message::VerticalIntersection, k), at.station, report);
    addStationLabel(label(Message::VerticalCurveEnd, k), at.station + at.halfLength, report);
  }
}

std::vector<tverticalElement> chainOf(const std::vector<host::tvert>& p) {
  std::vector<tverticalElement> chain;
  if (p.size() < 2) return chain;
  chain.push_back({p[0].station, p[0].elevation, p[1].gradeIn, 0, 0, 0, 0, 0});
  for (std::size_t k = 1; k + 1 < p.size(); ++k) {
    const double s = p[k].station;
    const double z = p[k].elevation;
    const double t = p[k].halfLength;
    chain.back().endStation = s - t;
    chain.push_back({s - t, z - p[k].gradeIn * t, p[k].gradeIn, s + t, p[k].gradeOut * t + z, p[k].gradeOut,
                     p[k].gradeIn > p[k].gradeOut ? -p[k].radius : p[k].radius, t});
    chain.push_back({s + t, ((s + t) - s) * p[k].gradeOut + z, p[k].gradeOut, 0, 0, 0, 0, 0});
  }
  chain.back().endStation = p.back().station;
  return chain;
}

const tverticalElement* firstHolding(const std::vector<tverticalElement>& chain, double s) {
  for (const tverticalElement& e : chain)
    if (e.startStation <= s && s <= e.endStation) return &e;
  return nullptr;
}

double alongStart(const tverticalElement& e, double s) {
  return (s - e.startStation) * e.startGrade + e.startElevation;
}

double elevationOf(const std::vector<tverticalElement>& chain, double s, double before) {
  if (!chain.empty() && s < chain.front().startStation) return alongStart(chain.front(), s);
  if (!chain.empty() && s > chain.back().endStation) return alongStart(chain.back(), s);
  const tverticalElement* e = firstHolding(chain, s);
  if (e == nullptr) return before;
  if (e->radius == 0.0) return alongStart(*e, s);
  const double s0 = e->startStation;
  const double z0 = e->startElevation;
  const double g = e->startGrade;
  const double r = e->radius;
  return (g - s0 / r) * s + s * s / (2 * r) + (s0 * s0 / (2 * r) - s0 * g + z0);
}

void elevations(const std::vector<host::tvert>& points, tglsReport& report) {
  const auto chain = chainOf(points);
  double before = 0.0;
  for (tglsRow* row : report.rows) {
    const double s = row->station;
    row->elevation = before = elevationOf(chain, s, before);
    const tverticalElement* e = firstHolding(chain, s);
    if (e == nullptr) continue;
    if (e->radius != 0.0 && !(s <= e->startStation + e->halfLength))
      row->tangentElevation = (s - e->endStation) * e->endGrade + e->endElevation;
    else
      row->tangentElevation = alongStart(*e, s);
  }
  for (tglsRow* row : report.rows) {
    row->curveY = row->elevation - row->tangentElevation;
    row->curveX = -1.0;
    for (const tglsVerElem* v : report.verElems) {
      if (v->type == 0 || !(v->curveStart <= row->station && row->station <= v->curveEnd)) continue;
      row->curveX =
          v->curveStart + v->halfLength >= row->station ? row->station - v->curveStart : v->curveEnd - row->station;
      break;
    }
  }
}

// ---------------------------------------------------------------- the finished table

void distances(tglsReport& report) {
  for (ArrayIndex i = 1; i < report.rows.size(); i += 2) {
    auto* row = new tglsRow;
    row->distance = report.rows[i]->station - report.rows[i - 1]->station;
    report.rows.insertAt(i, row);
  }
}

void horizontalColumns(tglsReport& report) {
  ArrayIndex b = 0;
  for (ArrayIndex k = 2; k < report.rows.size(); k += 2) {
    const double s = report.rows[k]->station;
    for (const tglsHorElem* h : report.horElems) {
      const bool atStart = s < h->start + 0.000001 && s > h->start - 0.000001;
      const bool atEnd = s < h->end + 0.000001 && s > h->end - 0.000001;
      if (!atStart && !atEnd) continue;
      tglsRow& row = *report.rows[(k - b) / 2 + b];
      row.horType = h->type;
      row.horParameter = h->parameter;
      row.horLength = h->length;
      row.horAngle = h->angle;
      b = k;
      if (k != report.rows.size() - 1) report.horBreakRows.add(static_cast<std::int32_t>(k));
      break;
    }
  }
}

void join(CString& notes, const CString& joiner, const CString& text) {
  notes = notes.empty() ? text : notes + joiner + text;
}

void notes(tglsReport& report) {
  const CString w = message(Message::VerticalIntersection);
  ArrayIndex j = 0;
  ArrayIndex b = 0;
  ArrayIndex c = 0;
  for (ArrayIndex i = 0; i < report.rows.size(); ++i) {
    const bool isLast = i == report.rows.size() - 1;
    const CString& name = report.rows[i]->name;
    if (!isLast && !(name.size() >= 2 && name.substr(0, 2) == w.substr(0, 2))) continue;
    const tglsVerElem& v = *report.verElems[j];
    if (c > 0)
      join(report.rows[c]->notes, L", ", message(Message::GradeChange) + L" = " + number("%.2f", v.gradeChange) + L"%");
    const CString sign = v.grade > 0 ? message(Message::Rise) : v.grade < 0 ? message(Message::Fall) : L"";
    const ArrayIndex m = (i - b) / 2 + b;
    join(report.rows[m - 1]->notes, L" ,", sign + number(" %.2f", std::fabs(v.grade)) + L"%");
    join(report.rows[m]->notes, L" ,", message(Message::TangentLength) + number(" %.2f m", v.length));
    if (!isLast) {
      join(report.rows[i - 1]->notes, L" ,",
           v.radius < 0 ? message(Message::CrestRadius) + number(" = %.0f m", -v.radius)
                        : message(Message::SagRadius) + number(" = %.0f m", v.radius));
      join(report.rows[i]->notes, L" ,", message(Message::VerticalCurveTangent) + number(" = %.2f m", v.halfLength));
      report.verBreakRows.add(static_cast<std::int32_t>(i));
    }
    b = i + 1;
    c = i + 1;
    ++j;
  }
}

}  // namespace

void addStationLabel(const CString& label, double station, tglsReport& report) {
  for (ArrayIndex k = 0; k < report.rows.size(); ++k) {
    tglsRow& row = *report.rows[k];
    if (station > row.station + 0.0001) continue;
    if (station + 0.0001 > row.station && row.station > station - 0.0001) {
      if (!row.name.empty()) row.name += L", ";
      row.name += label;
    } else {
      auto* made = new tglsRow;
      made->name = label;
      made->station = station;
      report.rows.insertAt(k, made);
    }
    return;
  }
}

void readCorridorData(GlsCase& made, CorridorList& corridors, tglsReport& report) {
  tpt3list p;
  const auto all = made.roadway.document->corridorList;
  for (int c = 0; c < all->count(); ++c) {
    test::FakeCorridor& corridor = *all->items[static_cast<std::size_t>(c)];
    auto* record = new tcorridor;
    corridors.add(record);
    record->name = corridor.name();
    record->description = corridor.description();
    record->handle = corridor.handle();
    for (const auto& baseline : corridor.baselineList->items) {
      auto* kept = new tbaseline;
      record->baselines.add(kept);
      if (baseline->alignmentObject) kept->alignmentHandle = baseline->alignmentObject->handle();
      for (const auto& region : baseline->regionList->items) {
        auto stations = region->stationSet()->stations();
        if (made.user.code == host::kIdOk) {
          for (const tglsRow* row : report.rows) {
            bool stands = false;
            for (const double e : stations.values)
              stands = stands || (e + 0.000001 > row->station && row->station > e - 0.000001);
            if (!stands) region->addStation(row->station, row->name);
          }
          corridor.rebuild();
          stations = region->stationSet()->stations();
        }
        for (const double s : stations.values) {
          int at = 0;
          while (at < kept->stations.count() && kept->stations[at].first < s) ++at;
          kept->stations.insert(at, {s, 0.0, 0.0});
        }
      }
      for (int i = 0; i < kept->stations.count(); ++i) section(*baseline, kept->stations[i], p, report);
    }
  }
}

void collectGlsRows(GlsCase& made, tglsReport& report) {
  horizontals(made, report);
  framework::OwnedList<projection::tsl> lines;
  projection::collectSampleLines(made.drawing.document, made.drawing.database, L"", L"A",
                                 projection::GroupFilter::named(L"G"), lines.get());
  for (const projection::tsl* sample : lines.get()) addStationLabel(sample->name, sample->station, report);
  verticals(made.points, report);
  CorridorList corridors;
  readCorridorData(made, corridors, report);
  releaseCorridors(corridors);
  elevations(made.points, report);
  distances(report);
  horizontalColumns(report);
  notes(report);
}

}  // namespace lvx::gls::plain
