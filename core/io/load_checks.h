#pragma once

#include <cstdint>

#include "core/io/byte_stream.h"
#include "texture_io.h"

/// @file
/// What the readers of this folder ask before they take memory for pixels.
///
/// Each reader takes limits. With them it is the one of LoadTexture(): anything odd is refused. Without (null) it is the one of
/// the constructors: it takes what it can, and leaves in the header what it read, and no buffer, where it refuses.

namespace moktexture {

/// eLoadTooLarge if the header's sizes do not fit in 32 bits. With limits, refuses as well what exceeds them, a texture without
/// pixels, and one for which the source has fewer than `needed` bytes left.
ELoadStatus validateSizes(const CMOKTextureHeader& header, const ByteReader& source, std::uint64_t needed,
                          const LoadLimits* limits);

/// The status of a source that gave less than it was asked for.
inline ELoadStatus endedEarly(const ByteReader& source) {
    return source.failed() ? eLoadUnreadable : eLoadTruncated;
}

}  // namespace moktexture
