#pragma once

#include "moktc/amtc/records/level_records.h"

namespace moktexture::amtc {

/// Finds 2 to 5 colours that stand for the middle of a footprint of 9 by 9 pixels, starting from its extremes along `axis`, and
/// makes pairs of them the candidates of `start`. Sets `candidates`, `count` and `isFlatStart`.
void ClusterStart(const ColourVector& axis, const Footprint& footprint, RepStart& start);

}  // namespace moktexture::amtc
