#include "gls/detail/cell_words.h"

#include "services/message_catalogue.h"

namespace lvx::gls::detail {

namespace {

constexpr double kOrdinateTolerance = 0.000001;

CString message(std::uint32_t id) { return services::getMessage(services::kMessageSet, id); }

}  // namespace

CellWords::CellWords() : noCorridor_(message(kMessageNoCorridor)) {
  for (std::size_t type = 0; type < elements_.size(); ++type)
    elements_[type] = message(elementMessage(static_cast<std::int32_t>(type)));
}

const CString& CellWords::element(std::int32_t horType) const {
  return elementMessage(horType) == 0 ? none_ : elements_[static_cast<std::size_t>(horType)];
}

bool isNearlyOutsideCurves(const tglsRow& row) {
  return row.curveX > kOutsideCurves - kOrdinateTolerance && row.curveX < kOutsideCurves + kOrdinateTolerance;
}

}  // namespace lvx::gls::detail
