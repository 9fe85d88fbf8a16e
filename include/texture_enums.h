#pragma once

/// @file
/// Enumerations that describe a texture. Each has a fixed underlying type, so that every number in a file is a valid value.

/// Type of one channel value.
enum EMOKTVariableType : unsigned int {
    eVarUByteNorm = 0,   ///< unsigned byte, normalised
    eVarSByteNorm = 1,   ///< signed byte, normalised
    eVarUByte = 2,       ///< unsigned byte
    eVarSByte = 3,       ///< signed byte
    eVarUShortNorm = 4,  ///< unsigned short, normalised
    eVarSShortNorm = 5,  ///< signed short, normalised
    eVarUShort = 6,      ///< unsigned short
    eVarSShort = 7,      ///< signed short
    eVarUIntNorm = 8,    ///< unsigned int, normalised
    eVarSIntNorm = 9,    ///< signed int, normalised
    eVarUInt = 10,       ///< unsigned int
    eVarSInt = 11,       ///< signed int
    eVarFloat = 12,      ///< float
    eVarNone = 13,       ///< no type: an unknown format of a legacy file
};

/// Transfer curve of the colour channels.
enum EMOKTColourSpace : unsigned int {
    eColourSpaceLinear = 0,
    eColourSpaceSRGB = 1,
};

/// Axis of a texture, as CMOKTextureHeader::getOrientation() takes it: x along the width, y the height, z the depth.
enum EMOKTAxis : unsigned int {
    eAxisX = 0,
    eAxisY = 1,
    eAxisZ = 2,
};

/// A bit set with one bit for each axis; a cleared bit is the default direction of that axis.
enum EMOKTOrientation : unsigned int {
    eOrientRight = 0,
    eOrientDown = 0,
    eOrientIn = 0,
    eOrientLeft = 1,
    eOrientUp = 2,
    eOrientOut = 4,
};

/// Combines directions: `eOrientLeft | eOrientUp`.
constexpr EMOKTOrientation operator|(EMOKTOrientation a, EMOKTOrientation b) {
    return static_cast<EMOKTOrientation>(static_cast<unsigned int>(a) | static_cast<unsigned int>(b));
}

namespace moktexture {

/// Channels, as arguments of the operations that read or write selected channels.
enum EChannelName : unsigned int {
    eChannelNone = 0,
    eChannelRed = 1,
    eChannelGreen = 2,
    eChannelBlue = 3,
    eChannelAlpha = 4,
    eChannelLuminance = 5,    ///< as a destination: channels one, two and three
    eChannelIntensity = 6,    ///< as a destination: channels one, two and three
    eChannelUnspecified = 7,  ///< the fourth channel
};

/// Effort of an encoder, passed to it unchanged. The codec defines the steps; DXTn has none.
enum ECompressorQuality : unsigned int {
    eCompressorQuality0 = 0,
    eCompressorQuality1 = 1,
    eCompressorQuality2 = 2,
    eCompressorQuality3 = 3,
    eCompressorQuality4 = 4,
    eCompressorQuality5 = 5,
};

/// Filter of Resize() and GenerateMIPMaps().
enum EResizeMode : unsigned int {
    eResizeNearest = 0,  ///< nearest, by truncation
    eResizeLinear = 1,   ///< bilinear, or trilinear if the source's depth is not 1
    eResizeCubic = 2,    ///< Lagrange cubic over four samples an axis
};

/// Family of the legacy numbers of pixel formats; see CMOKTexture::saveFileLegacyMOK(). Values of one family are equivalent.
enum ELegacyApi : unsigned int {
    eLegacyApiGLFamilyA = 1,
    eLegacyApiGLFamilyB = 2,
    eLegacyApiD3DFamilyA = 3,
    eLegacyApiGLFamilyC = 4,
    eLegacyApiD3DFamilyB = 5,
    eLegacyApiDXGIFamily = 6,
    eLegacyApiVGFamily = 7,
};

}  // namespace moktexture
