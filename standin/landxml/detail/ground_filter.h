#pragma once

#include <memory>

#include "landxml/detail/source.h"

namespace lvx::landxml::detail {

/// The bytes of `whole` without what stands inside <Pnts>, <Faces>, <SourceData> and <Watersheds>, whose tags stay: of a
/// large drawing a hundredth is left, for little more than the time that reading the file takes. It looks for the end tag
/// as it stands there: markup that has one in a comment, too, isn't well-formed any more. Files in encodings of several
/// bytes a letter other than UTF-8 pass as they are.
[[nodiscard]] std::unique_ptr<ByteSource> withoutGround(std::unique_ptr<ByteSource> whole);

}  // namespace lvx::landxml::detail
