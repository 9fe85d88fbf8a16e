#pragma once

#include "moktc/amtc/records/level_records.h"

namespace moktexture::amtc {

/// The storable pair whose four levels fit the footprint's pixels along `axis` (a unit vector) best, each pixel weighted by the
/// magnitude of its kernel entry. With `isPunchThrough` the second generation at 4 bits per pixel leaves out pixels that are
/// wholly zero. Without pixels the pair is around zero.
ColourPair FindAxisEndpoints(const AmtcLevelSettings& settings, bool isPunchThrough, const Footprint& footprint,
                             const FootprintKernel& sharpKernel, const ColourVector& axis);

}  // namespace moktexture::amtc
