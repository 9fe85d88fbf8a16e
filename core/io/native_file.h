#pragma once

#include <cstdint>

#include "core/io/byte_stream.h"
#include "texture_io.h"

/// @file
/// The native file, version 3: the 52-byte header record, the metadata blocks and the pixel data, back to back, little-endian.

namespace moktexture {

/// How strictly a native file is read. Whatever the rules, sizes that do not fit in 32 bits are refused.
struct NativeReadRules {
    enum class Overrun {
        refuse,  ///< the file is corrupt
        drop,    ///< the block is not added, and the pixels are taken to start where it starts
        accept   ///< the block is added
    };

    /// Header and pixels must be there in full, and counts must not be 0. Otherwise what is missing keeps its defaults or zeroes.
    bool complete;
    /// What happens to a metadata block that ends beyond the declared size of the metadata.
    Overrun overrun;
    /// Whether a metadata block may have no payload.
    bool emptyBlocks;
    LoadLimits limits;

    /// For LoadTexture(): anything odd is refused before memory is taken.
    static NativeReadRules strict(const LoadLimits& limits);
    /// For the constructor from a path.
    static NativeReadRules fileConstructor();
    /// For the constructor from a memory image.
    static NativeReadRules memoryConstructor();
};

/// Reads a native file from the source's start into a default texture.
///
/// What is left on failure is what a constructor's caller finds: a default texture if the file is refused by its first word or
/// its sizes; the header with the blocks read so far, its data size and no buffer if the metadata ends early; the header and a
/// buffer with the pixels that exist, and zeroes, if the pixels end early (with rules that are not `complete`).
ELoadStatus readNativeFile(ByteReader& source, const NativeReadRules& rules, CMOKTexture& texture);

/// Writes a texture as a native file: record, blocks in the map's order, and the whole buffer, as they stand.
/// Returns false if a write failed, or if the buffer or a block's payload is empty.
bool writeNativeFile(const CMOKTexture& texture, ByteWriter& target);

}  // namespace moktexture
