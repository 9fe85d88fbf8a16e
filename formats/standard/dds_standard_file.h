#pragma once

#include "core/io/byte_stream.h"
#include "texture_io.h"

/// @file
/// DDS as other tools write and read it (the DDS file reference of the DirectX documentation):
///
///       4 bytes   "DDS "
///     124 bytes   header: sizes, level count, pixel format by masks, FourCC or Direct3D 9 number
///      20 bytes   with FourCC "DX10": DXGI_FORMAT, dimension, array size, alpha mode
///                 for each layer, face and level: slices and rows
///
/// Flags and counts of real files are often wrong: a level count of 0 means 1, any count is taken that the file is long enough
/// for.

namespace moktexture {

/// Reads a file into a default texture. Nothing beside the limits is trusted; on failure the texture is unspecified.
ELoadStatus readStandardDDS(ByteReader& source, const LoadLimits& limits, CMOKTexture& texture);

/// Whether a DDS header can hold all properties of the texture header except metadata.
bool fitsStandardDDS(const CMOKTextureHeader& header);

/// Writes a texture that fits and has its pixels: with the classic header if that holds all properties, else with "DX10". False
/// if it does not fit or a write failed.
bool writeStandardDDS(const CMOKTexture& texture, ByteWriter& target);

}  // namespace moktexture
