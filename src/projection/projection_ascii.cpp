#include "projection/projection_ascii.h"

#include <cstddef>
#include <cstdint>

#include "host/host.h"
#include "platform/platform.h"
#include "services/formatted_text.h"
#include "services/narrow_write.h"
#include "services/report_header.h"
#include "services/station_text.h"

namespace lvx::projection {

namespace {

constexpr std::size_t kOffsetWidth = 10;
constexpr std::size_t kElevationWidth = 9;

/// A longer text gets no padding and pushes what follows to the right.
CString padded(const CString& text, std::size_t width) {
  return text.size() < width ? CString(width - text.size(), L' ') + text : text;
}

void writeRow(std::FILE* stream, double offset, double elevation) {
  services::writeNarrow(stream, padded(services::lengthText(offset), kOffsetWidth) + L" ");
  services::writeNarrow(stream, padded(services::lengthText(elevation), kElevationWidth) + L"\r\n");
}

void writeBlock(std::FILE* stream, const tsl& record) {
  services::writeNarrow(stream, record.name + L"   " + services::stationText(record.station) + L"\r\n");
  for (std::int32_t k = 0; k < record.leftPoints.count(); ++k)
    writeRow(stream, record.leftOffsets[k].first, record.leftPoints[k].third);
  for (std::int32_t k = firstRightRow(record); k < record.rightPoints.count(); ++k)
    writeRow(stream, record.rightOffsets[k].first, record.rightPoints[k].third);
}

}  // namespace

bool writeProjectionAscii(const CString& fileName, const CString& /*alignmentText*/, const SampleLineList& list) {
  const platform::FileHandle file = vnrxHost()->platform().openFile(fileName, "wb");
  if (!file) return false;  // quiet: the command goes on to its next form
  services::writeAsciiHeader(file.get(), services::Message::ProjectionTitle, fileName, services::headerTime());
  for (framework::ArrayIndex i = 0; i < list.size(); ++i) {
    writeBlock(file.get(), *list[i]);
    if (i + 1 < list.size()) services::writeNarrow(file.get(), L"&\r\n");
  }
  return true;
}

}  // namespace lvx::projection
