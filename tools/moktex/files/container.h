#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "MOKTexLib.h"

namespace moktextool {

/// The path that means standard input or output.
inline constexpr const char* standardStream = "-";
/// The name of a path in messages: the path itself, or "standard stream".
std::string displayName(const std::string& path);
/// The extension of a path in lower case, with its dot.
std::string extensionOf(const std::string& path);
/// Whether textures are written to such a file: .mok, .ktx, .ktx2, .dds or .h.
bool isContainerExtension(const std::string& extension);
/// Whether textures are read from such a file: .mok, .ktx, .ktx2 or .dds.
bool isReadableExtension(const std::string& extension);
/// Whether `bytes` start like a texture file of any layout, including the legacy one.
bool startsLikeTexture(std::span<const unsigned char> bytes);

/// A family of the legacy format numbers and its name on the command line.
struct LegacyApiName {
    const char* name;
    moktexture::ELegacyApi api;
};
std::span<const LegacyApiName> legacyApiNames();

/// Where and in which layout a texture is written.
struct OutputTarget {
    std::string path;                                 ///< "-" for a native texture on standard output
    std::optional<moktexture::ELegacyApi> legacyApi;  ///< set for the legacy layout
    bool overwrites = false;                          ///< an existing file is replaced
    moktexture::EContainerLayout layout = moktexture::eLayoutStandard;
};

/// Throws a Failure if the legacy layout is requested for a file other than .mok.
void requireLegacyPath(const OutputTarget& target);
/// Whether the target can hold such a texture.
bool holds(const OutputTarget& target, const moktexture::CMOKTextureHeader& header);
/// Throws a Failure if the target cannot hold such a texture; it names the containers that can.
void requireHoldable(const moktexture::CMOKTextureHeader& header, const OutputTarget& target);
/// A warning if the target cannot hold the texture's metadata, or in the legacy layout its colour space or that its colours are
/// premultiplied; "" if nothing is lost.
std::string containerCaveat(const moktexture::CMOKTextureHeader& header, const OutputTarget& target);
/// The bytes of a texture file, in the container given by the path's extension. The array in C source is named after the path.
/// Throws a Failure if the container cannot hold the texture, or there are no pixels.
std::vector<unsigned char> encodeContainer(const moktexture::CMOKTexture& texture, const OutputTarget& target);

}  // namespace moktextool
