#include "gls/detail/cell_words.h"

#include "services/message_catalogue.h"

namespace lvx::gls::detail {

namespace {

constexpr double kOrdinateTolerance = 0.000001;

CString wordFor(std::size_t horType) {
  const std::optional<Message> word = elementMessage(static_cast<std::int32_t>(horType));
  return word ? services::getMessage(*word) : CString();
}

}  // namespace

CellWords::CellWords() : noCorridor_(services::getMessage(Message::NoCorridor)) {
  for (std::size_t type = 0; type < elements_.size(); ++type) elements_[type] = wordFor(type);
}

const CString& CellWords::element(std::int32_t horType) const {
  return elementMessage(horType) ? elements_[static_cast<std::size_t>(horType)] : none_;
}

bool isNearlyOutsideCurves(const tglsRow& row) {
  return row.curveX > kOutsideCurves - kOrdinateTolerance && row.curveX < kOutsideCurves + kOrdinateTolerance;
}

}  // namespace lvx::gls::detail
