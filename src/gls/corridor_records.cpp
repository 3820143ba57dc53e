#include "gls/corridor_records.h"

namespace lvx::gls {

void releaseCorridors(CorridorList& list) noexcept {
  for (tcorridor* corridor : list) framework::destroyAll(corridor->baselines);
  framework::destroyAll(list);
}

}  // namespace lvx::gls
