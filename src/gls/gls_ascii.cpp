#include "gls/gls_ascii.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include "gls/detail/cell_words.h"
#include "host/host.h"
#include "platform/platform.h"
#include "services/formatted_text.h"
#include "services/message_catalogue.h"
#include "services/narrow_write.h"
#include "services/report_header.h"
#include "services/station_text.h"

namespace lvx::gls {

namespace {

using detail::CellWords;

constexpr std::size_t kColumns = kGlsColumns.size();
constexpr std::size_t kNameColumn = 0;
constexpr std::size_t kNotesColumn = 3;
constexpr std::size_t kFirstElementColumn = 16;
constexpr const wchar_t* kLineEnd = L"\r\n";

/// The columns' widths in characters. Names and notes need more where their texts are longer.
using Widths = std::array<std::size_t, kColumns>;
constexpr Widths kLeastWidths{6, 11, 9, 10, 7, 7, 10, 10, 6, 6, 6, 6, 8, 8, 8, 8, 8, 6, 7, 7};

Widths widthsFor(const tglsReport& report) {
  Widths widths = kLeastWidths;
  for (const tglsRow* row : report.rows) {
    widths[kNameColumn] = std::max(widths[kNameColumn], row->name.size());
    widths[kNotesColumn] = std::max(widths[kNotesColumn], row->notes.size());
  }
  return widths;
}

// ---------------------------------------------------------------- cells

/// A text that is longer is not cut: the line widens.
void appendCentred(CString& line, const CString& text, std::size_t width) {
  const std::size_t padding = width > text.size() ? width - text.size() : 0;
  line.append(padding / 2, L' ');
  line += text;
  line.append(padding - padding / 2, L' ');
}

/// A text that is longer loses its end.
void appendRight(CString& line, const CString& text, std::size_t width) {
  if (text.size() < width) line.append(width - text.size(), L' ');
  line.append(text, 0, width);
}

void appendNotes(CString& line, const CString& notes, std::size_t width) {
  // The file step makes one percent sign of two, so that the cell has its width in the file.
  if (!notes.empty() && notes.back() == L'%')
    appendCentred(line, notes + L'%', width + 1);
  else
    appendCentred(line, notes, width);
}

/// The text of a cell that isn't the notes'; empty for a blank one.
CString cellText(const GlsColumn& column, const tglsRow& row, bool distanceRow, const CellWords& words) {
  const auto number = [&](bool shown) {
    return shown ? services::fixedText(row.*column.value, column.decimals) : CString();
  };
  switch (column.content) {
    case GlsContent::Name:
      return distanceRow ? CString() : row.name;
    case GlsContent::Station:
      return distanceRow ? CString() : services::stationText(row.station);
    case GlsContent::Distance:
      return number(distanceRow);
    case GlsContent::CurveOrdinate:
      return number(!distanceRow && row.curveX != kOutsideCurves);
    case GlsContent::Elevation:
      return number(!distanceRow);
    case GlsContent::Corridor:
      return !distanceRow && isNoCorridor(row) ? words.noCorridor() : number(!distanceRow);
    case GlsContent::ElementWord:
      return words.element(row.horType);
    case GlsContent::ElementLength:
      return number(detail::showsElement(row));
    case GlsContent::ElementCurve:
      return number(detail::showsCurvedElement(row));
    case GlsContent::Notes:
      break;
  }
  return {};
}

constexpr bool isCentred(GlsContent content) {
  switch (content) {
    case GlsContent::Name:
    case GlsContent::ElementWord:
    case GlsContent::ElementLength:
    case GlsContent::ElementCurve:
      return true;
    default:
      return false;
  }
}

// ---------------------------------------------------------------- lines

/// Rules of the columns from `first` up to `end`, with `joint` between two of them.
void appendRules(CString& line, const Widths& widths, std::size_t first, std::size_t end, wchar_t joint) {
  for (std::size_t i = first; i < end; ++i) {
    if (i > first) line += joint;
    line.append(widths[i], L'-');
  }
}

/// The table's first or last line.
CString border(wchar_t left, wchar_t right, const Widths& widths) {
  CString line(1, left);
  appendRules(line, widths, 0, kColumns, L'-');
  return line + right + kLineEnd;
}

/// The width of the columns that one group head stands over, with the bars between them.
std::size_t groupWidth(const Widths& widths, std::size_t first) {
  std::size_t width = widths[first];
  for (std::int32_t i = 1; i < kGlsColumns[first].groupColumns; ++i)
    width += 1 + widths[first + static_cast<std::size_t>(i)];
  return width;
}

/// The three head lines with the border above and the rule below, as one piece: a letter that the report's code page
/// doesn't have ends all of it.
CString tableHead(const Widths& widths) {
  const auto isPair = [](std::size_t i) { return i < kColumns && kGlsColumns[i].groupColumns == 2; };
  CString groups(1, L'|');
  CString rules(1, L'|');
  CString heads(1, L'|');
  for (std::size_t i = 0; i < kColumns; ++i) {
    const GlsColumn& column = kGlsColumns[i];
    if (column.groupColumns > 0) {
      const std::size_t width = groupWidth(widths, i);
      appendCentred(groups, column.groupHead ? services::getMessage(*column.groupHead) : CString(), width);
      groups += L'|';
      rules.append(width, isPair(i) ? L'-' : L' ');
      rules += isPair(i) && isPair(i + 2) ? L'+' : L'|';
    }
    appendCentred(heads, services::getMessage(column.head), widths[i]);
    heads += L'|';
  }
  CString head = border(L'/', L'\\', widths);
  head += groups + kLineEnd;
  head += rules + kLineEnd;
  head += heads + kLineEnd;
  head += L'|';
  appendRules(head, widths, 0, kColumns, L'+');
  head += L'|';
  return head + kLineEnd;
}

CString textLine(const tglsRow& row, bool distanceRow, const Widths& widths, const CellWords& words) {
  CString line(1, L'|');
  for (std::size_t i = 0; i < kColumns; ++i) {
    const GlsColumn& column = kGlsColumns[i];
    if (column.content == GlsContent::Notes)
      appendNotes(line, row.notes, widths[i]);
    else if (isCentred(column.content))
      appendCentred(line, cellText(column, row, distanceRow, words), widths[i]);
    else
      appendRight(line, cellText(column, row, distanceRow, words), widths[i]);
    line += L'|';
  }
  return line + kLineEnd;
}

/// The line under a row that isn't the last one.
CString ruleLine(const Widths& widths, bool tangentEnds, bool elementEnds) {
  CString line(1, L'|');
  appendRules(line, widths, 0, kNotesColumn, L'+');
  const wchar_t notesBar = tangentEnds ? L'+' : L'|';
  line += notesBar;
  line.append(widths[kNotesColumn], tangentEnds ? L'-' : L' ');
  line += notesBar;
  appendRules(line, widths, kNotesColumn + 1, kFirstElementColumn, L'+');
  if (elementEnds) {
    line += L'+';
    appendRules(line, widths, kFirstElementColumn, kColumns, L'+');
    line += L'|';
  } else {
    line += L'|';
    for (std::size_t i = kFirstElementColumn; i < kColumns; ++i) {
      line.append(widths[i], L' ');
      line += L'|';
    }
  }
  return line + kLineEnd;
}

/// For each of `count` rows whether it stands in `breakRows`.
std::vector<bool> breakFlags(const framework::CArray<std::int32_t>& breakRows, ArrayIndex count) {
  std::vector<bool> flags(static_cast<std::size_t>(count));
  for (const std::int32_t row : breakRows)
    if (row >= 0 && row < count) flags[static_cast<std::size_t>(row)] = true;
  return flags;
}

}  // namespace

bool writeGlsAscii(const CString& fileName, const CString& /*alignmentText*/, const tglsReport& report) {
  const Widths widths = widthsFor(report);
  const platform::FileHandle file = vnrxHost()->platform().openFile(fileName, "wb");
  if (!file) return false;  // quiet: the command goes on to its next form
  services::writeAsciiHeader(file.get(), Message::GlsTitle, fileName, services::headerTime());
  services::writeNarrow(file.get(), tableHead(widths));

  const CellWords words;
  const ArrayIndex count = report.rows.size();
  const std::vector<bool> tangentEnds = breakFlags(report.verBreakRows, count);
  const std::vector<bool> elementEnds = breakFlags(report.horBreakRows, count);
  for (ArrayIndex r = 0; r < count; ++r) {
    services::writeNarrow(file.get(), textLine(*report.rows[r], isDistanceRow(r), widths, words));
    const auto i = static_cast<std::size_t>(r);
    services::writeNarrow(
        file.get(), r + 1 == count ? border(L'\\', L'/', widths) : ruleLine(widths, tangentEnds[i], elementEnds[i]));
  }
  return true;
}

}  // namespace lvx::gls
