#include "points/points_columns.h"

#include <string>

#include "services/formatted_text.h"
#include "services/station_text.h"

namespace lvx::points {

using services::lengthText;
using services::Message;

const std::array<PointColumn, 10> kPointColumns{{
    {Message::PointNumber, 14, 2, false, [](const tpoint& row) { return std::to_wstring(row.number); }},
    {Message::PointEasting, 14, 2, true, [](const tpoint& row) { return lengthText(row.easting); }},
    {Message::PointNorthing, 14, 2, true, [](const tpoint& row) { return lengthText(row.northing); }},
    {Message::PointElevation, 14, 2, true, [](const tpoint& row) { return lengthText(row.elevation); }},
    {Message::PointName, 14, 2, false, [](const tpoint& row) { return row.name; }},
    {Message::PointRawDescription, 14, 2, false, [](const tpoint& row) { return row.description; }},
    {Message::PointFullDescription, 14, 2, false, [](const tpoint& row) { return row.fullDescription; }},
    {Message::PointAlignment, 22, 10, false, [](const tpoint& row) { return row.alignmentName; }},
    {Message::PointStation, 16, 4, false, [](const tpoint& row) { return services::stationText(row.station); }},
    {Message::PointOffset, 14, 2, true, [](const tpoint& row) { return lengthText(row.offset); }},
}};

}  // namespace lvx::points
