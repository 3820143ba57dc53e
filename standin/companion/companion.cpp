#include "host/companion.h"

#include <cmath>
#include <memory>
#include <string>
#include <utility>

#include "civil/drawing.h"
#include "companion/companion_access.h"
#include "host/run_time.h"
#include "platform/utf8.h"
#include "text/handle_text.h"

namespace {

using lvx::civil::AlignmentObject;
using lvx::civil::Drawing;
using lvx::civil::Element;
using lvx::civil::ElementKind;
using lvx::civil::ProfileObject;
using lvx::civil::Site;
using lvx::framework::CString;
using lvx::host::taxel;
using lvx::host::tvert;
using lvx::platform::fromUtf8;
using lvx::platform::toUtf8;

constexpr std::int32_t kDone = 1;
constexpr std::int32_t kNothing = 0;

enum ElementType : std::int32_t { kLine = 0, kArc = 1, kTighteningClothoid = 2, kRelaxingClothoid = 3 };

const Drawing* openDrawing() {
  lvx::companion::CompanionAccess* access = lvxCompanionAccess();
  return access == nullptr ? nullptr : access->drawing();
}

CString handleText(lvx::civil::Handle handle) {
  const std::string text = lvx::text::handleText(handle);
  return {text.begin(), text.end()};
}

// ---------------------------------------------------------------- site tree

template <class Record, class Object>
std::unique_ptr<Record> namedRecord(const Object& object) {
  auto record = std::make_unique<Record>();
  record->name = fromUtf8(object.name);
  record->description = fromUtf8(object.description);
  return record;
}

template <class Record, class Object>
std::unique_ptr<Record> recordWithHandle(const Object& object) {
  auto record = namedRecord<Record>(object);
  record->handle = handleText(object.handle);
  return record;
}

void appendSite(lvx::host::SiteTree& sites, const Site& site) {
  lvx::host::tsite& record = *sites.append(namedRecord<lvx::host::tsite>(site));
  for (const auto& alignment : site.alignments) {
    auto& children = record.alignments.append(recordWithHandle<lvx::host::tsiteAlignment>(*alignment))->children;
    for (const ProfileObject& profile : alignment->profiles)
      children.append(recordWithHandle<lvx::host::tprofile>(profile));
  }
}

// ---------------------------------------------------------------- horizontal elements

double radiusOf(double curvature) { return curvature == 0.0 ? 0.0 : 1.0 / curvature; }

/// The report computes a clothoid's parameter from the radius that stands first and divides by the difference to the
/// other one, so the sharper radius has to stand first whichever way the curve is driven.
void setRadii(taxel& record, const Element& element) {
  const double start = element.startCurvature;
  const double end = element.endCurvature;
  if (element.kind == ElementKind::Line || (start == 0.0 && end == 0.0)) {
    record.type = kLine;
  } else if (element.kind == ElementKind::Arc || start == end) {
    record.type = kArc;
    record.startRadius = radiusOf(start);
    record.endRadius = record.startRadius;
  } else {
    const bool tightens = std::abs(end) > std::abs(start);
    record.type = tightens ? kTighteningClothoid : kRelaxingClothoid;
    record.startRadius = radiusOf(tightens ? end : start);
    record.endRadius = radiusOf(tightens ? start : end);
  }
}

std::unique_ptr<taxel> elementRecord(const Element& element) {
  auto record = std::make_unique<taxel>();
  record->startDirection = lvx::civil::normalizedAngle(element.direction);
  record->endDirection = lvx::civil::normalizedAngle(element.endPose().direction);
  record->length = element.length;
  setRadii(*record, element);
  return record;
}

// ---------------------------------------------------------------- profiles

/// The first object of that name, or null.
template <class Objects>
auto* findNamed(const Objects& objects, const std::string& name) {
  const auto at = [](const auto& entry) {
    if constexpr (requires { entry->name; })
      return entry.get();
    else
      return &entry;
  };
  for (const auto& entry : objects)
    if (at(entry)->name == name) return at(entry);
  return static_cast<decltype(at(*objects.begin()))>(nullptr);
}

const AlignmentObject* findAlignment(const Drawing& drawing, const std::string& siteName, const std::string& name) {
  if (siteName.empty()) return findNamed(drawing.siteless.alignments, name);
  for (const Site& site : drawing.sites)
    if (site.name == siteName)
      if (const AlignmentObject* found = findNamed(site.alignments, name)) return found;
  return nullptr;
}

}  // namespace

std::int32_t pvsa_lvx_getQmtObject(lvx::host::Ref<lvx::host::QmtDocument>& document,
                                   lvx::host::Ref<lvx::host::QmtDatabase>& database) {
  lvx::companion::CompanionAccess* access = lvxCompanionAccess();
  return access != nullptr && access->connect(document, database) ? kDone : kNothing;
}

std::int32_t pvsa_lvx_releaseQmtObject() {
  lvx::companion::CompanionAccess* access = lvxCompanionAccess();
  if (access == nullptr) return kNothing;
  access->disconnect();
  return kDone;
}

std::int32_t pvsa_lvx_getsites(lvx::host::SiteTree& sites) {
  const Drawing* drawing = openDrawing();
  if (drawing == nullptr) return kNothing;
  appendSite(sites, drawing->siteless);
  for (const Site& site : drawing->sites) appendSite(sites, site);
  return kDone;
}

std::int32_t pvsa_lvx_relsites(lvx::host::SiteTree& sites) {
  lvx::host::releaseSites(sites);
  return kDone;
}

std::int32_t pvsa_lvx_gethelemp(const lvx::host::Ref<lvx::host::QmtAlignment>& alignment, double& startStation,
                                lvx::host::RecordList<taxel>& elements, lvx::framework::tpt3list& points) {
  lvx::companion::CompanionAccess* access = lvxCompanionAccess();
  const AlignmentObject* object = access == nullptr ? nullptr : access->alignmentBehind(alignment.get());
  if (object == nullptr) return kNothing;
  startStation = object->geometry.startStation();
  points.empty();
  for (const Element& element : object->geometry.elements()) {
    if (element.length == 0.0) continue;  // real files hold them; they are no element of the design
    elements.append(elementRecord(element));
    points.append({element.start.x, element.start.y, 0.0});
  }
  if (!object->geometry.isEmpty()) {
    const lvx::civil::Vec2 end = object->geometry.elements().back().endPose().point;
    points.append({end.x, end.y, 0.0});
  }
  return kDone;
}

std::int32_t pvsa_lvx_getvelem(const CString& siteName, const CString& alignmentName, const CString& profileName,
                               double& value, lvx::host::RecordList<tvert>& records) {
  value = 0.0;
  const Drawing* drawing = openDrawing();
  if (drawing == nullptr) return kNothing;
  const AlignmentObject* alignment = findAlignment(*drawing, toUtf8(siteName), toUtf8(alignmentName));
  if (alignment == nullptr) return kNothing;
  const ProfileObject* profile = findNamed(alignment->profiles, toUtf8(profileName));
  if (profile == nullptr) return kNothing;
  for (const lvx::civil::VerticalRecord& given : profile->profile.records()) {
    auto record = std::make_unique<tvert>();
    record->station = given.station;
    record->elevation = given.elevation;
    record->radius = given.radius;
    record->halfLength = given.halfLength;
    record->gradeIn = given.gradeIn;
    record->gradeOut = given.gradeOut;
    records.append(std::move(record));
  }
  return kDone;
}
