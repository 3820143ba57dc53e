#include "desktop/panels/property_words.h"

#include "desktop/common/qt_text.h"

namespace lvx::desktop {

using properties::Form;
using properties::Term;

QString PropertyWords::term(Term term) {
  switch (term) {
    case Term::Alignment:
      return tr("Alignment");
    case Term::Alignments:
      return tr("Alignments");
    case Term::Arc:
      return tr("Arc");
    case Term::Area:
      return tr("Area in plan");
    case Term::Area3d:
      return tr("Area of the ground");
    case Term::Azimuth:
      return tr("Azimuth");
    case Term::Baseline:
      return tr("Baseline");
    case Term::Baselines:
      return tr("Baselines");
    case Term::Biquadratic:
      return tr("Biquadratic transition");
    case Term::Bloss:
      return tr("Bloss transition");
    case Term::BorderLength:
      return tr("Length of the border");
    case Term::Circle:
      return tr("Circle");
    case Term::Clothoid:
      return tr("Clothoid");
    case Term::ClothoidParameter:
      return tr("A");
    case Term::Code:
      return tr("Code");
    case Term::Codes:
      return tr("Codes");
    case Term::Computed:
      return tr("Computed");
    case Term::Corridor:
      return tr("Corridor");
    case Term::CorridorPoints:
      return tr("Corridor");
    case Term::Corridors:
      return tr("Corridors");
    case Term::Cosine:
      return tr("Cosine transition");
    case Term::Curve:
      return tr("Curve");
    case Term::CurveEnd:
      return tr("End of curve");
    case Term::CurveStart:
      return tr("Start of curve");
    case Term::Curves:
      return tr("Curves");
    case Term::Description:
      return tr("Description");
    case Term::Design:
      return tr("Design");
    case Term::EastEnd:
      return tr("Easting at end");
    case Term::EastStart:
      return tr("Easting at start");
    case Term::Easting:
      return tr("Easting");
    case Term::EdgesOfMany:
      return tr("Edges of more than two triangles");
    case Term::Elements:
      return tr("Elements");
    case Term::Elevation:
      return tr("Elevation");
    case Term::EndStation:
      return tr("End station");
    case Term::Equations:
      return tr("Station equations");
    case Term::File:
      return tr("File");
    case Term::Files:
      return tr("Files");
    case Term::FullDescription:
      return tr("Full description");
    case Term::Gaps:
      return tr("Gaps");
    case Term::Given:
      return tr("Given");
    case Term::GradeIn:
      return tr("Grade in");
    case Term::GradeOut:
      return tr("Grade out");
    case Term::GreatestEasting:
      return tr("Greatest easting");
    case Term::GreatestElevation:
      return tr("Greatest elevation");
    case Term::GreatestGrade:
      return tr("Greatest grade");
    case Term::GreatestNorthing:
      return tr("Greatest northing");
    case Term::GreatestSlope:
      return tr("Greatest slope");
    case Term::Ground:
      return tr("Ground");
    case Term::GroundPoints:
      return tr("Ground");
    case Term::Group:
      return tr("Group");
    case Term::IntersectionPoints:
      return tr("Intersection points");
    case Term::KValue:
      return tr("K");
    case Term::LeastEasting:
      return tr("Least easting");
    case Term::LeastElevation:
      return tr("Least elevation");
    case Term::LeastGrade:
      return tr("Least grade");
    case Term::LeastNorthing:
      return tr("Least northing");
    case Term::LeastSlope:
      return tr("Least slope");
    case Term::Left:
      return tr("Left");
    case Term::Length:
      return tr("Length");
    case Term::Line:
      return tr("Line");
    case Term::MadeHere:
      return tr("Made here, not saved");
    case Term::MeanElevation:
      return tr("Mean elevation");
    case Term::Name:
      return tr("Name");
    case Term::NorthEnd:
      return tr("Northing at end");
    case Term::NorthStart:
      return tr("Northing at start");
    case Term::Northing:
      return tr("Northing");
    case Term::Number:
      return tr("Number");
    case Term::NumbersElsewhere:
      return tr("Members in other files");
    case Term::Offset:
      return tr("Offset");
    case Term::OffsetLeft:
      return tr("Offset on the left");
    case Term::OffsetRight:
      return tr("Offset on the right");
    case Term::Origin:
      return tr("Origin");
    case Term::Parabola:
      return tr("Parabola");
    case Term::Part:
      return tr("Part");
    case Term::Parts:
      return tr("Parts");
    case Term::Path:
      return tr("Drawing");
    case Term::Point:
      return tr("Point");
    case Term::PointGroup:
      return tr("Point group");
    case Term::PointGroups:
      return tr("Point groups");
    case Term::Points:
      return tr("Points");
    case Term::Profile:
      return tr("Profile");
    case Term::Profiles:
      return tr("Profiles");
    case Term::Radius:
      return tr("Radius");
    case Term::RadiusIn:
      return tr("Radius in");
    case Term::RadiusOut:
      return tr("Radius out");
    case Term::RawDescription:
      return tr("Raw description");
    case Term::Region:
      return tr("Region");
    case Term::Regions:
      return tr("Regions");
    case Term::Right:
      return tr("Right");
    case Term::SampleLine:
      return tr("Sample line");
    case Term::SampleLineGroup:
      return tr("Sample line group");
    case Term::SampleLineGroups:
      return tr("Sample line groups");
    case Term::SampleLines:
      return tr("Sample lines");
    case Term::Sections:
      return tr("Sections");
    case Term::Sinusoid:
      return tr("Sine transition");
    case Term::Site:
      return tr("Site");
    case Term::Sites:
      return tr("Sites");
    case Term::StartStation:
      return tr("Start station");
    case Term::Station:
      return tr("Station");
    case Term::StationAhead:
      return tr("Station ahead");
    case Term::StationBack:
      return tr("Station back");
    case Term::Surface:
      return tr("Surface");
    case Term::Surfaces:
      return tr("Surfaces");
    case Term::Triangles:
      return tr("Triangles");
    case Term::TrianglesWithoutArea:
      return tr("Triangles without area");
    case Term::Turn:
      return tr("Turn");
    case Term::Type:
      return tr("Type");
    case Term::Unit:
      return tr("Unit");
    case Term::UnsymmetricParabola:
      return tr("Unsymmetric parabola");
    case Term::Vertices:
      return tr("Vertices");
  }
  return {};
}

std::string PropertyWords::words(Term term) { return toUtf8(PropertyWords::term(term)); }

QString PropertyWords::unit(Form form, const std::string& linearUnit) {
  // Of a drawing without a unit metres are taken, and told as such by the reports too.
  const QString name = toQt(linearUnit);
  const bool isFoot = name.contains(QLatin1String("foot"), Qt::CaseInsensitive);
  const QString length = name.isEmpty() || name == QLatin1String("meter") ? QStringLiteral("m")
                         : isFoot                                         ? QStringLiteral("ft")
                                                                          : name;
  switch (form) {
    case Form::Length:
      return length;
    case Form::Area:
      return length + QChar(0x00B2);
    case Form::Percent:
      return QStringLiteral("%");
    case Form::Gon:
      return QStringLiteral("gon");
    case Form::Text:
    case Form::Whole:
    case Form::Station:
    case Form::Factor:
      break;
  }
  return {};
}

QString PropertyWords::heading(const properties::Column& column, const std::string& linearUnit) {
  const QString unit = PropertyWords::unit(column.form, linearUnit);
  return unit.isEmpty() ? term(column.term) : QStringLiteral("%1 [%2]").arg(term(column.term), unit);
}

}  // namespace lvx::desktop
