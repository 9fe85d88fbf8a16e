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
/// Whether textures are written to such a file: .mok, .ktx, .dds or .h.
bool isContainerExtension(const std::string& extension);
/// Whether textures are read from such a file: .mok, .ktx or .dds.
bool isReadableExtension(const std::string& extension);
/// Whether bytes start like a texture of any layout, the legacy one too.
bool startsLikeTexture(std::span<const unsigned char> bytes);

/// The parts of the legacy numbering by their names on the command line.
struct LegacyApiName {
    const char* name;
    moktexture::ELegacyApi api;
};
std::span<const LegacyApiName> legacyApiNames();

/// Where a texture goes.
struct OutputTarget {
    std::string path;                                 ///< "-" for a native texture on standard output
    std::optional<moktexture::ELegacyApi> legacyApi;  ///< set for the legacy layout
};

/// A Failure if the legacy layout is asked for where it is not written.
void requireLegacyPath(const OutputTarget& target);
/// A Failure that names what can hold such a texture, if the target's layout cannot. Format, channel type, colour space,
/// premultiplication and depth count.
void requireHoldable(const moktexture::CMOKTextureHeader& header, const OutputTarget& target);
/// What readers of such a file will get wrong about the texture: its colours, or slices and array members; "" if nothing.
/// Formats that cannot be read back at all are not told of.
std::string containerCaveat(const moktexture::CMOKTextureHeader& header, const OutputTarget& target);
/// The image of a texture file by the extension of its path. The array of C source is named for the path.
/// Empty if that cannot be.
std::vector<unsigned char> encodeContainer(const moktexture::CMOKTexture& texture, const std::string& path);

}  // namespace moktextool
