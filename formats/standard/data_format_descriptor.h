#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "CMOKTextureHeader.h"

/// @file
/// The data format descriptor of KTX 2: one basic descriptor block (Khronos Data Format 1.3).

namespace moktexture {

/// The descriptor with its total size in front, for a header whose format has a VkFormat.
std::string encodeDataFormatDescriptor(const CMOKTextureHeader& header);

/// Whether a descriptor marks colours as premultiplied by alpha. False also if it is too short to tell.
bool isPremultiplied(std::span<const unsigned char> descriptor);

}  // namespace moktexture
