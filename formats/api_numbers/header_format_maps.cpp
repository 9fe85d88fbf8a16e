// The members of CMOKTextureHeader that translate its format to and from the numbers of graphics APIs.

#include "CMOKTextureHeader.h"
#include "core/texture/subresources.h"
#include "formats/api_numbers/api_constants.h"
#include "formats/api_numbers/format_maps.h"

namespace moktexture {
namespace {

void setFormat(CMOKTextureHeader& header, PixelType pixelFormat, EMOKTVariableType channelType, EMOKTColourSpace colourSpace) {
    header.setPixelFormat(pixelFormat);
    header.setChannelType(channelType);
    header.setColourSpace(colourSpace);
}

/// Whether a value of OpenGL's type holds a whole pixel.
bool isPackedType(unsigned int type) {
    return type == GL_UNSIGNED_SHORT_4_4_4_4 || type == GL_UNSIGNED_SHORT_5_5_5_1 || type == GL_UNSIGNED_SHORT_5_6_5 ||
           type == GL_UNSIGNED_INT_2_10_10_10_REV;
}

/// Kept (opengl-base-format-lookup): a layout is found by the base format, passed as internal format, but half floats by
/// `format`; KTX files pass their glBaseInternalFormat there, and sized internal formats stay unknown.
unsigned int baseFormat(unsigned int internalFormat, unsigned int format, unsigned int type) {
    const bool isHalfFloat = type == GL_HALF_FLOAT || type == GL_HALF_FLOAT_OES;
    return isHalfFloat ? format : internalFormat;
}

bool setFromOpenGL(CMOKTextureHeader& header, OpenGLApi api, const OpenGLNumbers& numbers) {
    const auto& [internalFormat, format, type] = numbers;
    if (format == 0) {
        // Kept (opengl-unknown-compressed): an unknown compressed format changes channel type and colour space and succeeds; KTX
        // files of it load, with eFmtUnknown and 0 bytes of pixels.
        const std::optional<OpenGLPixels> pixels = findOpenGLCompressed(api, internalFormat);
        setFormat(header, pixels ? pixels->pixelFormat : header.getPixelType(), eVarUIntNorm, eColourSpaceLinear);
        return true;
    }
    const std::optional<OpenGLPixels> pixels = findOpenGLLayout(api, baseFormat(internalFormat, format, type), type);
    // Kept (opengl-unknown-layout): an unknown layout fails for packed types only; hosts detect the others by the unchanged
    // header.
    if (!pixels) return !isPackedType(type);
    setFormat(header, pixels->pixelFormat, pixels->channelType, eColourSpaceLinear);
    return true;
}

/// Writes the numbers of the header's format to the three outputs, if it has any.
void getFromMap(const CMOKTextureHeader& header, OpenGLApi api, unsigned int& internalFormat, unsigned int& format,
                unsigned int& type) {
    const std::optional<OpenGLNumbers> numbers = findOpenGLNumbers(api, header.getPixelType(), header.getChannelType());
    if (!numbers) return;
    internalFormat = numbers->internalFormat;
    format = numbers->format;
    type = numbers->type;
}

}  // namespace

void CMOKTextureHeader::getOGLFormat(unsigned int& internalFormat, unsigned int& format, unsigned int& type) const {
    internalFormat = format = type = 0;
    // Kept (opengl-type-of-unknown-layout): an unknown layout of bytes still has a type; hosts recognise the missing number by
    // `internalFormat`, as writeKTXFile() does.
    if (!isCompressed(getPixelType())) {
        if (getChannelType() == eVarUByteNorm) type = GL_UNSIGNED_BYTE;
        if (getChannelType() == eVarSByteNorm) type = GL_BYTE;
    }
    getFromMap(*this, OpenGLApi::openGL, internalFormat, format, type);
}

void CMOKTextureHeader::getOGLESFormat(unsigned int& internalFormat, unsigned int& format, unsigned int& type) const {
    // Kept (opengles-outputs-left): outputs without a number keep the caller's value, except for `format` and `type` of
    // compressed formats and the `type` of bytes; hosts pass their own defaults in.
    if (isCompressed(getPixelType())) {
        format = type = 0;
    } else if (getChannelType() == eVarUByteNorm) {
        type = GL_UNSIGNED_BYTE;
    }
    getFromMap(*this, OpenGLApi::openGLES, internalFormat, format, type);
}

unsigned int CMOKTextureHeader::getD3DFormat() const {
    return findD3DNumber(getPixelType(), getChannelType());
}

unsigned int CMOKTextureHeader::getDXGIFormat() const {
    return findDXGINumber(getPixelType(), getChannelType(), getColourSpace());
}

bool CMOKTextureHeader::setOGLFormat(const unsigned int& internalFormat, const unsigned int& format, const unsigned int& type) {
    return setFromOpenGL(*this, OpenGLApi::openGL, {internalFormat, format, type});
}

bool CMOKTextureHeader::setOGLESFormat(const unsigned int& internalFormat, const unsigned int& format, const unsigned int& type) {
    return setFromOpenGL(*this, OpenGLApi::openGLES, {internalFormat, format, type});
}

bool CMOKTextureHeader::setD3DFormat(const unsigned int& d3dFormat) {
    const D3DRow* row = findD3DFormat(d3dFormat);
    if (row == nullptr) return false;
    setFormat(*this, row->pixelFormat, row->channelType, eColourSpaceLinear);
    if (row->isPremultiplied) setIsPreMultiplied(true);
    return true;
}

bool CMOKTextureHeader::setDXGIFormat(const unsigned int& dxgiFormat) {
    const DXGIRow* row = findDXGIFormat(dxgiFormat);
    if (row == nullptr) return false;
    setFormat(*this, row->pixelFormat, row->channelType, row->colourSpace);
    return true;
}

}  // namespace moktexture
