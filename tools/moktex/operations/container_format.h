#pragma once

#include "moktex/files/container.h"
#include "moktex/formats/texture_format.h"

namespace moktextool {

/// The format to write where none is asked for: that of the header, or, if the target cannot hold it and it is uncompressed, the
/// first RGBA layout that the target holds and that keeps the values; else one of 8 bits a channel. The header's own format if
/// the target holds none.
TextureFormat formatHeldBy(const OutputTarget& target, const moktexture::CMOKTextureHeader& header);

}  // namespace moktextool
