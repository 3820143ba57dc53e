#include "points/points_ascii.h"

#include <array>

#include "host/host.h"
#include "platform/platform.h"
#include "points/points_columns.h"
#include "services/message_catalogue.h"
#include "services/narrow_write.h"
#include "services/report_header.h"

namespace lvx::points {

namespace {

/// Captions up to this length leave their column at its least width.
constexpr std::size_t kLongestPlainCaption = 12;

using Widths = std::array<std::size_t, kPointColumns.size()>;

void appendPadded(CString& line, const CString& text, std::size_t width) {
  if (text.size() < width) line.append(width - text.size(), L' ');
  line += text;
}

void writeLine(std::FILE* stream, CString& line) {
  line += L"\r\n";
  services::writeNarrow(stream, line);
  line.clear();
}

}  // namespace

bool writePointsAscii(const CString& fileName, const PointList& list) {
  const std::int64_t time = services::headerTime();
  const platform::FileHandle file = vnrxHost()->platform().openFile(fileName, "wb");
  if (!file) return false;  // quiet: the command goes on to its next form
  services::writeAsciiHeader(file.get(), services::Message::PointsTitle, fileName, time);

  CString line;
  Widths widths{};
  for (std::size_t k = 0; k < kPointColumns.size(); ++k) {
    const PointColumn& column = kPointColumns[k];
    const CString caption = services::getMessage(column.caption);
    widths[k] =
        caption.size() > kLongestPlainCaption ? caption.size() + column.blanksBeforeLongCaption : column.leastWidth;
    appendPadded(line, caption, widths[k]);
  }
  writeLine(file.get(), line);

  tpoint row;
  for (framework::ArrayIndex i = 0; i < list.size(); ++i) {
    list.read(i, row);
    for (std::size_t k = 0; k < kPointColumns.size(); ++k) appendPadded(line, kPointColumns[k].text(row), widths[k]);
    writeLine(file.get(), line);
  }
  return true;
}

}  // namespace lvx::points
