#include "workbook/detail/sheet_cells.h"

namespace lvx::workbook::detail {

void SheetCells::put(CellPlace place, const CellValue& value) {
  hasThreeDecimals_ = hasThreeDecimals_ || value.threeDecimals;
  if (place.row < rowNumber_) {
    late_[place.row].push_back({place.column, value, std::string(value.text)});
    lateBytes_ += value.text.size();
    return;
  }
  if (place.row > rowNumber_) {
    if (!row_.empty()) log_.append(rowNumber_, row_);
    row_.clear();
    rowNumber_ = place.row;
  }
  row_.put(place.column, value);
}

void SheetCells::rewind() {
  if (isTaking_ && !row_.empty()) log_.append(rowNumber_, row_);
  isTaking_ = false;
  log_.rewind();
  nextLate_ = late_.begin();
  isAhead_ = false;
  isLogEnded_ = false;
}

bool SheetCells::next(std::uint32_t& number, Row& row) {
  if (!isAhead_ && !isLogEnded_) {
    isAhead_ = log_.next(rowNumber_, row_);
    isLogEnded_ = !isAhead_;
  }
  if (nextLate_ != late_.end() && (!isAhead_ || nextLate_->first < rowNumber_)) {
    row.clear();
    number = nextLate_->first;
    add(nextLate_->second, row);
    ++nextLate_;
    return true;
  }
  if (!isAhead_) return false;
  std::swap(row, row_);
  number = rowNumber_;
  isAhead_ = false;
  if (nextLate_ != late_.end() && nextLate_->first == number) {
    add(nextLate_->second, row);
    ++nextLate_;
  }
  return true;
}

void SheetCells::add(const std::vector<LateCell>& cells, Row& to) {
  for (const LateCell& cell : cells) {
    CellValue value = cell.value;
    value.text = cell.text;
    to.put(cell.column, value);
  }
}

}  // namespace lvx::workbook::detail
