#include "workbook/detail/row_log.h"

#include <cstring>
#include <limits>

#include "framework/exceptions.h"
#include "standin_platform/temporary_stream.h"

namespace lvx::workbook::detail {

namespace {

constexpr std::size_t kSpillSize = std::size_t{1} << 20;

struct RowHead {
  std::uint32_t number;
  std::uint32_t cells;
  std::uint64_t bytes;  // of the cells that follow
};

struct CellHead {
  std::uint32_t textLength;
  std::uint16_t column;
  CellKind kind;
  bool threeDecimals;
};

template <class T>
void appendBytes(std::string& out, const T& value) {
  char bytes[sizeof value];
  std::memcpy(bytes, &value, sizeof value);
  out.append(bytes, sizeof value);
}

template <class T>
void takeBytes(const char*& from, T& value) {
  std::memcpy(&value, from, sizeof value);
  from += sizeof value;
}

}  // namespace

void Row::put(std::uint16_t column, const CellValue& value) {
  std::int32_t& slot = slots_[column];
  if (slot < 0) {
    slot = static_cast<std::int32_t>(cells_.size());
    cells_.push_back({0.0, 0, 0, column, CellKind::Empty, false});
  }
  Cell& cell = cells_[static_cast<std::size_t>(slot)];
  cell.threeDecimals = cell.threeDecimals || value.threeDecimals;
  if (value.kind == CellKind::Kept) return;
  cell.kind = value.kind;
  cell.number = value.number;
  cell.textBegin = texts_.size();
  cell.textLength = value.text.size();
  texts_.append(value.text);
}

void Row::clear() {
  for (const Cell& cell : cells_) slots_[cell.column] = -1;
  cells_.clear();
  texts_.clear();
}

void RowLog::append(std::uint32_t number, const Row& row) {
  const std::size_t begin = buffer_.size();
  appendBytes(buffer_, RowHead{number, static_cast<std::uint32_t>(row.size()), 0});
  row.forEach([this](std::uint16_t column, const CellValue& value) {
    appendBytes(buffer_,
                CellHead{static_cast<std::uint32_t>(value.text.size()), column, value.kind, value.threeDecimals});
    if (value.kind == CellKind::Number) {
      appendBytes(buffer_, value.number);
    } else {
      buffer_.append(value.text);
      textBytes_ += value.text.size();
    }
  });
  cells_ += row.size();
  const std::uint64_t bytes = buffer_.size() - begin - sizeof(RowHead);
  std::memcpy(buffer_.data() + begin + offsetof(RowHead, bytes), &bytes, sizeof bytes);
  if (buffer_.size() >= kSpillSize) spill();
}

void RowLog::spill() {
  if (!file_) file_.reset(standin_platform::openTemporaryStream().release());
  if (!file_ || std::fwrite(buffer_.data(), 1, buffer_.size(), file_.get()) != buffer_.size())
    throw framework::AutomationException("workbook: the system's temporary folder can't take the sheet's rows");
  buffer_.clear();
}

void RowLog::rewind() {
  read_ = 0;
  if (!file_) return;
  if (isReading_)
    buffer_.clear();
  else
    spill();
  isReading_ = true;
  // By way of the end, so that the stream really goes to the begin: a process that shares the file may have read it.
  if (std::fflush(file_.get()) != 0 || std::fseek(file_.get(), 0, SEEK_END) != 0 ||
      std::fseek(file_.get(), 0, SEEK_SET) != 0)
    throw framework::AutomationException("workbook: the system's temporary folder can't take the sheet's rows");
}

bool RowLog::fill(std::size_t wanted) {
  if (buffer_.size() - read_ >= wanted) return true;
  if (!file_) return false;
  buffer_.erase(0, read_);
  read_ = 0;
  const std::size_t kept = buffer_.size();
  const std::size_t size = std::max(kSpillSize, wanted);
  buffer_.resize(size);
  buffer_.resize(kept + std::fread(buffer_.data() + kept, 1, size - kept, file_.get()));
  if (std::ferror(file_.get()) != 0)
    throw framework::AutomationException("workbook: the sheet's rows can't be read back from the temporary folder");
  return buffer_.size() >= wanted;
}

bool RowLog::next(std::uint32_t& number, Row& row) {
  row.clear();
  if (!fill(sizeof(RowHead))) return false;
  RowHead head{};
  std::memcpy(&head, buffer_.data() + read_, sizeof head);
  if (!fill(sizeof head + head.bytes))
    throw framework::AutomationException("workbook: the sheet's rows can't be read back from the temporary folder");
  const char* from = buffer_.data() + read_ + sizeof head;
  for (std::uint32_t i = 0; i < head.cells; ++i) {
    CellHead cell{};
    takeBytes(from, cell);
    CellValue value{cell.kind, cell.threeDecimals, 0.0, {}};
    if (cell.kind == CellKind::Number) {
      takeBytes(from, value.number);
    } else {
      value.text = {from, cell.textLength};
      from += cell.textLength;
    }
    row.put(cell.column, value);
  }
  read_ += sizeof head + head.bytes;
  number = head.number;
  return true;
}

}  // namespace lvx::workbook::detail
