#pragma once

#include <string>

#include "core/io/byte_stream.h"
#include "core/io/read_policy.h"
#include "texture_io.h"

/// @file
/// The file layouts: which path or first word selects which, and the reader and writer of each.

namespace moktexture {

enum class FileLayout {
    mok,      ///< native, version 3 or legacy, by its first word
    ktx,      ///< KTX 1.1
    dds,      ///< DDS
    cHeader,  ///< C source; written only
    unknown   ///< an extension that names no layout
};

/// The layout to read a path in: ktx or dds by its extension, mok for every other one. The extension is what follows the last
/// '.', in either case of letters; a path without '.' has none.
FileLayout fileLayoutForLoading(const std::string& path);

/// The layout to write to a path: by its extension "ktx", "dds", "h" or "mok", else unknown. The extension is what follows the
/// last '.', in either case of letters; a path without '.' is an extension as a whole.
FileLayout fileLayoutForSaving(const std::string& path);

/// The layout of an image whose first four bytes are `firstWord`: ktx, dds, or mok, whose reader refuses unknown words.
FileLayout fileLayoutOfFirstWord(std::uint32_t firstWord);

/// Whether `length` bytes, fewer than 4 and zero-extended to `word`, are the start of a file of any layout.
bool startsFileLayout(std::uint32_t word, std::size_t length);

/// Reads a file of layout mok, ktx or dds from the source's start into a default texture. For what a failure leaves, see the
/// layout's reader.
ELoadStatus readTextureFile(ByteReader& source, FileLayout layout, const ReadPolicy& policy, CMOKTexture& texture);

/// The same for files of any maker: KTX 1.1 and DDS as they are published, KTX 2, and the library's own arrangements, which are
/// told apart by their sizes. The policy is a strict one.
ELoadStatus readPublishedFile(ByteReader& source, FileLayout layout, const ReadPolicy& policy, CMOKTexture& texture);

/// Writes a file of a layout. Returns false for an unknown layout and where the layout's writer does.
/// @param arrayName  for cHeader
bool writeTextureFile(const CMOKTexture& texture, FileLayout layout, const char* arrayName, ByteWriter& target);

}  // namespace moktexture
