#pragma once

#include "host/model.h"

/// The corridor side of the object model, reached through the roadway application and not through the two references of
/// the companion library. The rules at the head of host/model.h hold here too.
namespace lvx::host {

/// The code strings of a section part or point.
class QmtCodes : public QmtObject {
 public:
  [[nodiscard]] virtual std::int32_t count() = 0;
  [[nodiscard]] virtual CString item(std::int32_t index) = 0;
};

class QmtSectionPoint : public QmtObject {
 public:
  [[nodiscard]] virtual Ref<QmtCodes> codes() = 0;
  /// Station, offset, elevation relative to the baseline's profile; bounds 0 to 2.
  [[nodiscard]] virtual HostArray<double> stationOffsetElevation() = 0;
};

using QmtSectionPoints = QmtCollection<QmtSectionPoint>;

/// One layer or kerb of a corridor section.
class QmtSectionPart : public QmtObject {
 public:
  [[nodiscard]] virtual Ref<QmtCodes> codes() = 0;
  [[nodiscard]] virtual Ref<QmtSectionPoints> points() = 0;
};

using QmtSectionParts = QmtCollection<QmtSectionPart>;

/// What the corridor looks like across its baseline at one station.
class QmtSection : public QmtObject {
 public:
  [[nodiscard]] virtual Ref<QmtSectionParts> parts() = 0;
};

class QmtStationSet : public QmtObject {
 public:
  /// The stations of a region's sections.
  [[nodiscard]] virtual HostArray<double> stations() = 0;
};

class QmtBaselineRegion : public QmtObject {
 public:
  [[nodiscard]] virtual Ref<QmtStationSet> stationSet() = 0;
  /// Asks for a section at `station`; it stands after the corridor's next rebuild. Changes the drawing.
  virtual void addStation(double station, const CString& label) = 0;
};

using QmtBaselineRegions = QmtCollection<QmtBaselineRegion>;

class QmtProfile : public QmtObject {
 public:
  [[nodiscard]] virtual double elevationAt(double station) = 0;
};

class QmtBaseline : public QmtObject {
 public:
  [[nodiscard]] virtual Ref<QmtAlignment> alignment() = 0;
  [[nodiscard]] virtual Ref<QmtProfile> profile() = 0;
  [[nodiscard]] virtual Ref<QmtBaselineRegions> regions() = 0;
  [[nodiscard]] virtual Ref<QmtSection> sectionAt(double station) = 0;
};

using QmtBaselines = QmtCollection<QmtBaseline>;

class QmtCorridor : public QmtObject {
 public:
  [[nodiscard]] virtual CString name() = 0;
  [[nodiscard]] virtual CString description() = 0;
  [[nodiscard]] virtual CString handle() = 0;
  [[nodiscard]] virtual Ref<QmtBaselines> baselines() = 0;
  /// Computes every section that the corridor's stations ask for. Changes the drawing, returns when done.
  virtual void rebuild() = 0;
};

using QmtCorridors = QmtCollection<QmtCorridor>;

class QmtRoadwayDocument : public QmtObject {
 public:
  [[nodiscard]] virtual Ref<QmtCorridors> corridors() = 0;
};

class QmtRoadwayApplication : public QmtObject {
 public:
  [[nodiscard]] virtual Ref<QmtRoadwayDocument> activeDocument() = 0;
};

/// The program identifier by which the running application is looked up.
inline constexpr const wchar_t* kApplicationProgramId = L"Vantor.Application.24";
/// The one by which it hands out the roadway application.
inline constexpr const wchar_t* kRoadwayProgramId = L"QmtXUiRoadway.QmtRoadwayApplication.13.6";

/// The host application's own automation object.
class VantorApplication : public QmtObject {
 public:
  /// -1 is the automation value of true.
  virtual void setFlag(std::int16_t value) = 0;
  /// An interface object by its program identifier, or an empty reference.
  [[nodiscard]] virtual Ref<QmtObject> interfaceObject(const CString& programId) = 0;
};

}  // namespace lvx::host
