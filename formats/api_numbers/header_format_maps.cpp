// The members of CMOKTextureHeader that translate its format to and from the numbers of graphics APIs.
#include <span>

#include "CMOKTextureHeader.h"
#include "core/texture/data_size.h"
#include "formats/api_numbers/api_constants.h"
#include "formats/api_numbers/d3d_map.h"
#include "formats/api_numbers/dxgi_map.h"
#include "formats/api_numbers/opengl_es_map.h"
#include "formats/api_numbers/opengl_map.h"

namespace moktexture {
namespace {

void setFormat(CMOKTextureHeader& header, PixelType pixelFormat, EMOKTVariableType channelType, EMOKTColourSpace colourSpace) {
    header.setPixelFormat(pixelFormat);
    header.setChannelType(channelType);
    header.setColourSpace(colourSpace);
}

/// Whether OpenGL's type holds a whole pixel.
bool isPackedType(unsigned int type) {
    return type == GL_UNSIGNED_SHORT_4_4_4_4 || type == GL_UNSIGNED_SHORT_5_5_5_1 || type == GL_UNSIGNED_SHORT_5_6_5 ||
           type == GL_UNSIGNED_INT_2_10_10_10_REV;
}

// Kept: a layout is found by its base format where the internal format is looked for, half floats by the format itself; KTX
// files name the base format in both places.
unsigned int baseFormat(unsigned int internalFormat, unsigned int format, unsigned int type) {
    const bool isHalfFloat = type == GL_HALF_FLOAT || type == GL_HALF_FLOAT_OES;
    return isHalfFloat ? format : internalFormat;
}

bool setFromOpenGL(CMOKTextureHeader& header, std::span<const OpenGLRow> rows, unsigned int internalFormat, unsigned int format,
                   unsigned int type) {
    if (format == 0) {
        // Kept: an unknown compressed format changes channel type and colour space and succeeds; such KTX files load.
        const OpenGLRow* row = findOpenGLCompressed(rows, internalFormat);
        setFormat(header, row != nullptr ? row->pixelFormat : header.getPixelType(), eVarUIntNorm, eColourSpaceLinear);
        return true;
    }
    const OpenGLRow* row = findOpenGLLayout(rows, baseFormat(internalFormat, format, type), type);
    // Kept: an unknown layout is a failure with packed types alone; callers see the others by the unchanged header.
    if (row == nullptr) return !isPackedType(type);
    setFormat(header, row->pixelFormat, row->channelType, eColourSpaceLinear);
    return true;
}

}  // namespace

void CMOKTextureHeader::getOGLFormat(unsigned int& internalFormat, unsigned int& format, unsigned int& type) const {
    internalFormat = format = type = 0;
    // Kept: an unknown layout of bytes still has a type; KTX files say it, and callers know the failure by `internalFormat`.
    if (!isCompressed(getPixelType())) {
        if (getChannelType() == eVarUByteNorm) type = GL_UNSIGNED_BYTE;
        if (getChannelType() == eVarSByteNorm) type = GL_BYTE;
    }
    const OpenGLRow* row = findOpenGLNumbers(openGLRows(), getPixelType(), getChannelType());
    if (row == nullptr) return;
    internalFormat = row->internalFormat;
    format = row->format;
    type = row->type;
}

void CMOKTextureHeader::getOGLESFormat(unsigned int& internalFormat, unsigned int& format, unsigned int& type) const {
    // Kept: what has no number keeps what the caller put there, but for `format` and `type` of compressed formats and for the
    // `type` of bytes; callers put their own defaults in.
    if (isCompressed(getPixelType())) {
        format = type = 0;
    } else if (getChannelType() == eVarUByteNorm) {
        type = GL_UNSIGNED_BYTE;
    }
    const OpenGLRow* row = findOpenGLNumbers(openGLESRows(), getPixelType(), getChannelType());
    if (row == nullptr) return;
    internalFormat = row->internalFormat;
    format = row->format;
    type = row->type;
}

unsigned int CMOKTextureHeader::getD3DFormat() const {
    return findD3DNumber(getPixelType(), getChannelType());
}

unsigned int CMOKTextureHeader::getDXGIFormat() const {
    return findDXGINumber(getPixelType(), getChannelType(), getColourSpace());
}

bool CMOKTextureHeader::setOGLFormat(const unsigned int& internalFormat, const unsigned int& format, const unsigned int& type) {
    return setFromOpenGL(*this, openGLRows(), internalFormat, format, type);
}

bool CMOKTextureHeader::setOGLESFormat(const unsigned int& internalFormat, const unsigned int& format, const unsigned int& type) {
    return setFromOpenGL(*this, openGLESRows(), internalFormat, format, type);
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
