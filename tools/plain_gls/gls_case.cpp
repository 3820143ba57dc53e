#include "plain_gls/gls_case.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>

#include "gls/gls_assembly.h"
#include "platform/utf8.h"

namespace lvx::gls {

namespace {

host::taxel element(std::int32_t type, double length, double startRadius, double endRadius) {
  host::taxel made;
  made.type = type;
  made.length = length;
  made.startRadius = startRadius;
  made.endRadius = endRadius;
  return made;
}

/// Shortest text that tells every two numbers apart, minus zero included; all numbers that are none are alike.
std::string numberText(double value) {
  if (std::isnan(value)) return "nan";
  char buffer[40];
  std::snprintf(buffer, sizeof buffer, "%.17g", value);
  return buffer;
}

class Line {
 public:
  explicit Line(std::string_view head) : text_(head) {}
  Line& operator<<(double value) {
    text_ += ' ' + numberText(value);
    return *this;
  }
  Line& operator<<(std::int32_t value) {
    text_ += ' ' + std::to_string(value);
    return *this;
  }
  Line& operator<<(const CString& value) {
    text_ += " '" + platform::toUtf8(value) + '\'';
    return *this;
  }
  [[nodiscard]] std::string text() const { return text_ + '\n'; }

 private:
  std::string text_;
};

}  // namespace

host::taxel line(double length, double direction) {
  host::taxel made = element(0, length, 0.0, 0.0);
  made.startDirection = made.endDirection = direction;
  return made;
}

host::taxel arc(double length, double radius, double startDirection, double endDirection) {
  host::taxel made = element(1, length, radius, radius);
  made.startDirection = startDirection;
  made.endDirection = endDirection;
  return made;
}

host::taxel clothoidIn(double length, double radius, double otherRadius) {
  return element(2, length, radius, otherRadius);
}

host::taxel clothoidOut(double length, double radius, double otherRadius) {
  return element(3, length, radius, otherRadius);
}

std::vector<host::tvert> profileOf(const std::vector<Pvi>& points) {
  std::vector<host::tvert> all(points.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    all[i].station = points[i].station;
    all[i].elevation = points[i].elevation;
    all[i].halfLength = points[i].halfLength;
    if (i == 0) continue;
    const double grade = (points[i].elevation - points[i - 1].elevation) / (points[i].station - points[i - 1].station);
    all[i - 1].gradeOut = grade;
    all[i].gradeIn = grade;
  }
  for (std::size_t i = 1; i + 1 < points.size(); ++i) {
    const double change = std::abs(all[i].gradeOut - all[i].gradeIn);
    if (change > 0.0) all[i].radius = 2.0 * all[i].halfLength / change;
  }
  return all;
}

int AnsweringUser::runModal(host::DialogBehaviour& dialog, void* parent) {
  asked.emplace_back(dialog.dialogTemplate().name);
  parents.push_back(parent);
  return code;
}

GlsCase::GlsCase() : roadway(host) {
  host.setDialogRunner(&user);
  host.useMessageBytes(
      "324 Rise\r\n325 Fall\r\n329 BS\r\n330 ES\r\n331 BC\r\n332 EC\r\n333 BVC\r\n334 PVI\r\n335 EVC\r\n"
      "336 Change\r\n337 Length\r\n338 Crest R\r\n339 Sag R\r\n340 T\r\n");
  axis = drawing.addAlignment(nullptr, L"A");
  group = axis->addGroup(L"G");
  companion.fillElements = [this](const host::Ref<host::QmtAlignment>& alignment, double& start,
                                  host::RecordList<host::taxel>& list) {
    if (alignment != axis) return;
    start = startStation;
    for (const host::taxel& made : elements) list.add(new host::taxel(made));
  };
  companion.fillVerticals = [this](const CString& site, const CString& alignment, const CString& profile,
                                   host::RecordList<host::tvert>& list) {
    sitesAsked.push_back(site);
    profilesAsked.push_back(profile);
    if (alignment != L"A" || profile != L"P") return;
    for (const host::tvert& made : points) list.add(new host::tvert(made));
  };
}

void GlsCase::collect(tglsReport& report) {
  collectGlsRows(host, drawing.document, drawing.database, siteName, L"A", L"G", L"P", report);
}

std::string textOf(const tglsReport& report) {
  std::string text;
  for (const tglsRow* row : report.rows)
    text += (Line("row") << row->name << row->station << row->distance << row->curveX << row->curveY
                         << row->tangentElevation << row->elevation << row->crossFallLeft << row->crossFallRight
                         << row->widthLeft << row->widthRight << row->heightLeft << row->heightRight
                         << row->edgeElevationLeft << row->edgeElevationRight << row->notes << row->horType
                         << row->horParameter << row->horLength << row->horAngle)
                .text();
  for (const tglsHorElem* element : report.horElems)
    text += (Line("hor") << element->start << element->end << element->type << element->parameter << element->length
                         << element->angle)
                .text();
  for (const tglsVerElem* element : report.verElems)
    text += (Line("ver") << element->type << element->curveStart << element->curveEnd << element->gradeChange
                         << element->grade << element->length << element->radius << element->halfLength)
                .text();
  Line breaks("breaks");
  for (const std::int32_t row : report.horBreakRows) breaks << row;
  breaks << L"|";
  for (const std::int32_t row : report.verBreakRows) breaks << row;
  return text + breaks.text();
}

std::string textOf(const CorridorList& corridors) {
  std::string text;
  for (const tcorridor* corridor : corridors) {
    text += (Line("corridor") << corridor->name << corridor->description << corridor->handle).text();
    for (const tbaseline* baseline : corridor->baselines) {
      text += (Line("baseline") << baseline->alignmentHandle).text();
      for (const framework::tpt3& section : baseline->stations)
        text += (Line("section") << section.first << section.second << section.third).text();
    }
  }
  return text;
}

}  // namespace lvx::gls
