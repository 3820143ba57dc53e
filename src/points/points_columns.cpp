#include "points/points_columns.h"

#include <string>

#include "services/formatted_text.h"
#include "services/station_text.h"

namespace lvx::points {

using services::lengthText;

const std::array<PointColumn, 10> kPointColumns{{
    {210, 14, 2, false, [](const tpoint& row) { return std::to_wstring(row.number); }},
    {211, 14, 2, true, [](const tpoint& row) { return lengthText(row.easting); }},
    {212, 14, 2, true, [](const tpoint& row) { return lengthText(row.northing); }},
    {213, 14, 2, true, [](const tpoint& row) { return lengthText(row.elevation); }},
    {214, 14, 2, false, [](const tpoint& row) { return row.name; }},
    {215, 14, 2, false, [](const tpoint& row) { return row.description; }},
    {216, 14, 2, false, [](const tpoint& row) { return row.fullDescription; }},
    {217, 22, 10, false, [](const tpoint& row) { return row.alignmentName; }},
    {218, 16, 4, false, [](const tpoint& row) { return services::stationText(row.station); }},
    {219, 14, 2, true, [](const tpoint& row) { return lengthText(row.offset); }},
}};

}  // namespace lvx::points
