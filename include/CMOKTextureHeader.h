#pragma once

#include <cstdint>

#include "CMOKTMap.h"
#include "CMOKTString.h"
#include "MOKTextureHeaderV3.h"
#include "MetaDataBlock.h"
#include "PixelType.h"
#include "texture_enums.h"

namespace moktexture {

/// Description of a texture: the header record and a two-level map of metadata. All sizes and offsets are computed here.
///
/// Nothing is validated: setters store what they get, and all arithmetic on sizes is unsigned, 32 bits wide, and wraps.
///
/// All functions that copy, read or write metadata may raise `std::bad_alloc`, the `const` getters of metadata included, since
/// they may insert an empty entry into the map. The header is then unchanged but for such an entry. No other exception is raised.
///
/// Thread safety: one object belongs to one thread at a time. This holds for reading too, for the same reason.
class MOKTEX_API CMOKTextureHeader {
public:
    using MetaDataMap = CMOKTMap<unsigned int, CMOKTMap<unsigned int, MetaDataBlock>>;

    /// Argument of getDataSize() and getTextureSize(): all MIP levels together.
    static constexpr int allLevels = -1;

    /// The record's defaults (eFmtUnknown, all dimensions 1), no metadata.
    CMOKTextureHeader();
    CMOKTextureHeader(const CMOKTextureHeader& other);
    /// From the values of the record; sizes in pixels. Note that the height precedes the width. Nothing is validated.
    CMOKTextureHeader(std::uint64_t pixelFormat, std::uint32_t height, std::uint32_t width, std::uint32_t depth,
                      std::uint32_t numMIPLevels, std::uint32_t numArrayMembers, std::uint32_t numFaces,
                      EMOKTColourSpace colourSpace, EMOKTVariableType channelType, bool preMultiplied);
    /// From a record and `count` blocks, each of which is copied with addMetaData(). The blocks' sizes are added to the record's
    /// `metaDataSize`: pass a record with 0 there, or they are counted twice. `blocks` may be null.
    CMOKTextureHeader(MOKTextureHeaderV3 fileHeader, unsigned int count, const MetaDataBlock* blocks);
    ~CMOKTextureHeader();
    CMOKTextureHeader& operator=(const CMOKTextureHeader& other);

    /// A copy of the record.
    MOKTextureHeaderV3 getFileHeader() const;
    PixelType getPixelType() const;
    /// Sum of the channel bits of an uncompressed layout, or the rate of a compressed format; 0 for formats without a data size.
    unsigned int getBitsPerPixel() const;
    EMOKTColourSpace getColourSpace() const;
    EMOKTVariableType getChannelType() const;

    /// Size of a MIP level in pixels, at least 1. The level getNumMIPLevels(), one past the last, has a size too; above it the
    /// result is 0.
    std::uint32_t getWidth(std::uint32_t level = 0) const;
    std::uint32_t getHeight(std::uint32_t level = 0) const;
    std::uint32_t getDepth(std::uint32_t level = 0) const;
    std::uint32_t getNumArrayMembers() const;
    std::uint32_t getNumFaces() const;
    std::uint32_t getNumMIPLevels() const;

    /// Bytes of a level, or of all levels.
    ///
    /// Dimensions of a compressed format are rounded up to its block first. The bits are summed over the levels, then shifted
    /// down to bytes once. More than 255 levels give 0 for allLevels. The result wraps at 32 bits.
    /// @param level  a MIP level, not checked against getNumMIPLevels(), or allLevels
    /// @param allSurfaces  true: of all array layers, else of one
    /// @param allFaces  true: of all faces, else of one
    std::uint32_t getDataSize(int level = allLevels, bool allSurfaces = true, bool allFaces = true) const;
    /// Pixels of a level, or of all levels: getDataSize() times 8, wrapped at 32 bits, divided by getBitsPerPixel(). The
    /// dimensions of a compressed format are therefore the rounded ones. 0 for a format of 0 bits per pixel.
    std::uint32_t getTextureSize(int level = allLevels, bool allSurfaces = true, bool allFaces = true) const;

    /// A flag of the record for the application's own use: loading and saving ignore it and never compress.
    bool isFileCompressed() const;
    /// Whether the colours are premultiplied by alpha.
    bool isPreMultiplied() const;
    /// Bytes of metadata as counted by the setters below, which may differ from the size of the blocks in a file.
    std::uint32_t getMetaDataSize() const;

    /// The axis's direction: 0 or its bit of EMOKTOrientation, as stored; 0 if nothing is stored.
    EMOKTOrientation getOrientation(EMOKTAxis axis) const;
    bool isBumpMap() const;
    /// 0 if the texture is not a bump map.
    float getBumpMapScale() const;
    /// At most four bytes of channel order, such as "xyzh"; "" if the texture is not a bump map.
    CMOKTString getBumpMapOrder() const;
    /// Number of floats in the texture atlas. 0 if there is no atlas or no payload, and for a texture of 1 by 1 by 1 pixel.
    int getNumTextureAtlasMembers() const;
    /// The stored floats, owned by the header and valid until its metadata changes, or null.
    const float* getTextureAtlasData() const;
    /// Letters of the faces in their order, at most six; "" for a texture of one face.
    CMOKTString getCubeMapOrder() const;
    /// Border sizes in pixels, all 0 if there is none.
    void getBorder(unsigned int& x, unsigned int& y, unsigned int& z) const;
    /// A copy of the block. If there is none, an all-zero block is inserted and returned.
    MetaDataBlock getMetaData(unsigned int fourCC, unsigned int key) const;
    bool hasMetaData(unsigned int fourCC, unsigned int key) const;
    /// All metadata, by FourCC and key in order of insertion. Owned by the header. Entries that getters insert are visible in it.
    const MetaDataMap& getMetaDataMap() const;

    void setPixelFormat(PixelType format);
    void setColourSpace(EMOKTColourSpace colourSpace);
    void setChannelType(EMOKTVariableType channelType);
    void setWidth(std::uint32_t newWidth);
    void setHeight(std::uint32_t newHeight);
    void setDepth(std::uint32_t newDepth);
    void setNumArrayMembers(std::uint32_t newNumMembers);
    void setNumMIPLevels(std::uint32_t newNumMIPLevels);
    void setNumFaces(std::uint32_t newNumFaces);
    /// False clears both flags, premultiplication too.
    void setIsFileCompressed(bool isFileCompressed);
    /// False clears both flags, file compression too.
    void setIsPreMultiplied(bool isPreMultiplied);

    void setOrientation(EMOKTOrientation orientation);
    /// @param bumpScale  scale of the normals
    /// @param bumpOrder  channel order, of which the first four bytes are kept
    void setBumpMap(float bumpScale, CMOKTString bumpOrder);
    /// @param data  floats, which are copied; null stores zeroes
    /// @param count  number of floats; `count` times 4 wraps at 32 bits, and only as many bytes are stored
    void setTextureAtlas(const float* data, unsigned int count);
    /// @param order  face letters, of which the first six are kept. A new block is stored under key 2, but written to files with
    /// key 1.
    void setCubeMapOrder(CMOKTString order);
    /// Sizes in pixels.
    void setBorder(unsigned int x, unsigned int y, unsigned int z);

    /// Stores a copy of the block under its own FourCC and key and adds 12 + `dataSize` to getMetaDataSize(), without subtracting
    /// the size of a block that it replaces.
    void addMetaData(const MetaDataBlock& block);
    /// Removes the block as CMOKTMap::Remove() does, and subtracts 12 + its `dataSize` from getMetaDataSize(), also if it is
    /// absent.
    void removeMetaData(const unsigned int& fourCC, const unsigned int& key);

    /// @name Numbers of graphics APIs
    /// Pixel format, channel type and colour space as the numbers of graphics APIs, and back. Getters and setters are not
    /// inverse: some formats come back as others, some exist in one direction only. Setters change these three values only, and
    /// premultiplication where documented. None of these functions allocates or raises.
    /// @{

    /// Numbers of OpenGL. All three are 0 for a format that has none, except that `type` is still GL_UNSIGNED_BYTE for an unknown
    /// layout of eVarUByteNorm, and GL_BYTE for one of eVarSByteNorm: test `internalFormat` for 0.
    /// @param internalFormat  the sized internal format, such as GL_RGBA8; unsized (GL_RGB) for rgb 5.6.5 and xbgr 2.10.10.10
    /// @param format  the base format, such as GL_RGBA; 0 for a compressed format
    /// @param type  such as GL_UNSIGNED_BYTE; 0 for a compressed format
    void getOGLFormat(unsigned int& internalFormat, unsigned int& format, unsigned int& type) const;
    /// Numbers of OpenGL ES, whose internal format is the base format. Outputs without a number keep their value, so initialise
    /// them; only the `type` of eVarUByteNorm is always written, as GL_UNSIGNED_BYTE, and `format` and `type` of a compressed
    /// format, as 0.
    /// @code
    /// unsigned int internalFormat = 0, format = 0, type = 0;
    /// header.getOGLESFormat(internalFormat, format, type);
    /// if (internalFormat != 0) { ... }
    /// @endcode
    void getOGLESFormat(unsigned int& internalFormat, unsigned int& format, unsigned int& type) const;
    /// The D3DFORMAT of Direct3D 9, which is a FourCC for most compressed formats, or 0. Colour space is ignored, and the channel
    /// type of compressed formats.
    unsigned int getD3DFormat() const;
    /// The DXGI_FORMAT, or 0. The colour space matters where both have a number; every one but sRGB counts as linear.
    unsigned int getDXGIFormat() const;

    /// Sets the format of OpenGL's numbers, in linear colour space.
    ///
    /// A `format` of 0 means a compressed format: the channel type becomes eVarUIntNorm, the colour space linear, and the pixel
    /// format that of `internalFormat`, or stays if that is unknown; the result is true in both cases. Otherwise a layout is
    /// searched, and an unknown one changes nothing.
    /// @param internalFormat  compressed format, or the base format such as GL_RGBA: sized ones such as GL_RGBA8, which
    ///     getOGLFormat() returns, are unknown
    /// @param format  0 for a compressed format; the base format for GL_HALF_FLOAT; else any number but 0
    /// @param type  such as GL_UNSIGNED_BYTE
    /// @return false for an unknown layout of a packed type (such as GL_UNSIGNED_SHORT_5_6_5); else true, also for other unknown
    ///     layouts and types: test the pixel format afterwards
    bool setOGLFormat(const unsigned int& internalFormat, const unsigned int& format, const unsigned int& type);
    /// Like setOGLFormat(), from numbers of OpenGL ES: without GL_BYTE and GL_BGR, and with GL_HALF_FLOAT_OES for GL_HALF_FLOAT.
    bool setOGLESFormat(const unsigned int& internalFormat, const unsigned int& format, const unsigned int& type);
    /// Sets the format of a D3DFORMAT or FourCC, in linear colour space. Unsigned layouts get eVarUIntNorm whatever their width.
    /// "DXT2" and "DXT4" also mark the texture as premultiplied; other numbers do not change that flag.
    /// @return false, with nothing changed, for an unknown number
    bool setD3DFormat(const unsigned int& d3dFormat);
    /// Sets pixel format, channel type and colour space of a DXGI_FORMAT.
    /// @return false, with nothing changed, for an unknown number
    bool setDXGIFormat(const unsigned int& dxgiFormat);
    /// @}

    /// Exchanges the contents with `other`; never fails.
    void Swap(CMOKTextureHeader& other) noexcept;

private:
    const MetaDataBlock* findBlock(unsigned int fourCC, unsigned int key) const;
    const MetaDataBlock* findTopic(unsigned int key) const;
    void setTopic(unsigned int key, unsigned int storedKey, const void* payload, std::uint32_t payloadSize);

    MOKTextureHeaderV3 record;
    mutable MetaDataMap metaData;
};

}  // namespace moktexture
