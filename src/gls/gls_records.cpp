#include "gls/gls_records.h"

namespace lvx::gls {

namespace {
constexpr double kMarkTolerance = 0.000001;
}

tglsReport::~tglsReport() {
  framework::destroyAll(rows);
  framework::destroyAll(verElems);
  framework::destroyAll(horElems);
}

bool isNoCorridor(const tglsRow& row) {
  return row.crossFallLeft > kNoCorridor - kMarkTolerance && row.crossFallLeft < kNoCorridor + kMarkTolerance;
}

}  // namespace lvx::gls
