#include "formats/standard/dds_standard_file.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>

#include "core/io/read_policy.h"
#include "core/texture/subresources.h"
#include "formats/standard/dds_masks.h"
#include "formats/standard/key_values.h"
#include "formats/standard/published_format.h"
#include "formats/standard/stored_texture.h"

namespace moktexture {
namespace {

constexpr std::uint32_t magicWord = 0x20534444;

// Flags of the header: sizes, counts and format that are there.
constexpr std::uint32_t flagsAlways = 0x1007, flagPitch = 0x8, flagMipMapCount = 0x20000, flagLinearSize = 0x80000,
                        flagDepth = 0x800000;
// Capabilities: what the surface consists of.
constexpr std::uint32_t capsComplex = 0x8, capsTexture = 0x1000, capsMipMap = 0x400000;
constexpr std::uint32_t caps2CubeMap = 0x200, caps2AllFaces = 0xFC00, caps2Volume = 0x200000;
// Flags of the pixel format.
constexpr std::uint32_t pixelAlphaPixels = 0x1, pixelAlpha = 0x2, pixelFourCC = 0x4, pixelRGB = 0x40, pixelLuminance = 0x20000,
                        pixelBumpLuminance = 0x40000, pixelSigned = 0x80000;
constexpr std::uint32_t dimension2D = 3, dimension3D = 4;
constexpr std::uint32_t miscCubeMap = 0x4;
constexpr std::uint32_t alphaModeMask = 0x7, alphaModePremultiplied = 2;

constexpr std::uint32_t fourCCOf(const char (&text)[5]) {
    std::uint32_t word = 0;
    for (int i = 3; i >= 0; --i)
        word = word << 8 | static_cast<unsigned char>(text[i]);
    return word;
}

struct PixelFormatField {
    std::uint32_t size, flags, code, bitCount;
    std::uint32_t masks[4];
};

/// What this library writes into words that are reserved for writers: its name, and properties that the other
/// fields cannot hold.
struct WriterFields {
    std::array<char, 12> name;
    std::uint32_t pixelFormatLow, pixelFormatHigh, channelType, colourSpace, isPremultiplied;
    std::uint32_t unused[3];
};
constexpr std::array<char, 12> writerName = {'M', 'O', 'K', 'T', 'e', 'x', 'L', 'i', 'b'};

struct ClassicHeader {
    std::uint32_t magic, size, flags, height, width, pitchOrLinearSize, depth, mipMapCount;
    WriterFields writer;
    PixelFormatField pixelFormat;
    std::uint32_t caps, caps2, caps3, caps4, reserved2;
};
static_assert(sizeof(ClassicHeader) == 128);

struct ExtendedHeader {
    std::uint32_t dxgiFormat, dimension, miscFlag, arraySize, miscFlags2;
};
static_assert(sizeof(ExtendedHeader) == 20);

struct DDSHeaders {
    ClassicHeader classic{};
    ExtendedHeader extended{};

    bool isExtended() const {
        return (classic.pixelFormat.flags & pixelFourCC) != 0 && classic.pixelFormat.code == fourCCOf("DX10");
    }
};

/// A code in the place of a FourCC.
struct CodedFormat {
    std::uint32_t code;
    PixelType pixelFormat;
    EMOKTVariableType channelType;
};

// FourCCs, and numbers of D3DFORMAT below 256. Of two codes for one format the first is written.
// clang-format off
constexpr CodedFormat codedFormats[] = {
    {fourCCOf("DXT1"), eFmtDXT1,                                 eVarUByteNorm},
    {fourCCOf("DXT2"), eFmtDXT2,                                 eVarUByteNorm},
    {fourCCOf("DXT3"), eFmtDXT3,                                 eVarUByteNorm},
    {fourCCOf("DXT4"), eFmtDXT4,                                 eVarUByteNorm},
    {fourCCOf("DXT5"), eFmtDXT5,                                 eVarUByteNorm},
    {fourCCOf("ATI1"), eFmtBC4,                                  eVarUByteNorm},
    {fourCCOf("BC4U"), eFmtBC4,                                  eVarUByteNorm},
    {fourCCOf("BC4S"), eFmtBC4,                                  eVarSByteNorm},
    {fourCCOf("ATI2"), eFmtBC5,                                  eVarUByteNorm},
    {fourCCOf("BC5U"), eFmtBC5,                                  eVarUByteNorm},
    {fourCCOf("BC5S"), eFmtBC5,                                  eVarSByteNorm},
    {fourCCOf("UYVY"), eFmtUYVY,                                 eVarUByteNorm},
    {fourCCOf("YUY2"), eFmtYUY2,                                 eVarUByteNorm},
    {fourCCOf("RGBG"), eFmtRGBG8888,                             eVarUByteNorm},
    {fourCCOf("GRGB"), eFmtGRGB8888,                             eVarUByteNorm},
    {fourCCOf("MTC2"), eFmtMOKTC2bppRGBA,                        eVarUByteNorm},
    {fourCCOf("MTC4"), eFmtMOKTC4bppRGBA,                        eVarUByteNorm},
    { 36, {'r', 'g', 'b', 'a', 16, 16, 16, 16},                eVarUShortNorm},
    {110, {'r', 'g', 'b', 'a', 16, 16, 16, 16},                eVarSShortNorm},
    {111, {'r',   0,   0,   0, 16,  0,  0,  0},                eVarFloat},
    {112, {'r', 'g',   0,   0, 16, 16,  0,  0},                eVarFloat},
    {113, {'r', 'g', 'b', 'a', 16, 16, 16, 16},                eVarFloat},
    {114, {'r',   0,   0,   0, 32,  0,  0,  0},                eVarFloat},
    {115, {'r', 'g',   0,   0, 32, 32,  0,  0},                eVarFloat},
    {116, {'r', 'g', 'b', 'a', 32, 32, 32, 32},                eVarFloat},
};
// clang-format on

/// The code of a format, else of one with the same bits; null if there is none.
const CodedFormat* findCoded(PixelType format, EMOKTVariableType type) {
    const CodedFormat* alike = nullptr;
    for (const CodedFormat& row : codedFormats) {
        if (!haveSameBits(row.pixelFormat, row.channelType, format, type)) continue;
        if (row.pixelFormat == format) return &row;
        if (alike == nullptr) alike = &row;
    }
    return alike;
}

bool applyCode(std::uint32_t code, CMOKTextureHeader& header) {
    for (const CodedFormat& row : codedFormats) {
        if (row.code != code) continue;
        header.setPixelFormat(row.pixelFormat);
        header.setChannelType(row.channelType);
        if (row.pixelFormat == eFmtDXT2 || row.pixelFormat == eFmtDXT4) header.setIsPreMultiplied(true);
        return true;
    }
    // Numbers of formats that other writers describe by masks.
    return code < 256 && header.setD3DFormat(code);
}

/// The masks of a header; the alpha mask is used only if the flags announce it, because many writers
/// leave an unused mask there.
PixelMasks masksOf(const PixelFormatField& field) {
    const bool hasAlpha = (field.flags & (pixelAlphaPixels | pixelAlpha)) != 0;
    PixelMasks masks{
        MaskKind::rgb, field.bitCount, {field.masks[0], field.masks[1], field.masks[2], hasAlpha ? field.masks[3] : 0}};
    if ((field.flags & pixelRGB) != 0) return masks;
    if ((field.flags & pixelBumpLuminance) != 0) {
        masks.kind = MaskKind::bumpLuminance;
        masks.masks[3] = 0;
    } else if ((field.flags & pixelSigned) != 0) {
        masks.kind = MaskKind::signedRGB;
        masks.masks[3] = field.masks[3];
    } else if ((field.flags & pixelLuminance) != 0) {
        masks.kind = MaskKind::luminance;
        masks.masks[1] = masks.masks[2] = 0;
    } else {
        masks.kind = MaskKind::alpha;
        masks.masks = {0, 0, 0, field.masks[3]};
    }
    return masks;
}

bool applyPixelFormat(const PixelFormatField& field, CMOKTextureHeader& header) {
    if ((field.flags & pixelFourCC) != 0) return applyCode(field.code, header);
    if ((field.flags & (pixelRGB | pixelLuminance | pixelBumpLuminance | pixelSigned | pixelAlpha)) == 0) return false;
    const std::optional<UncompressedLayout> layout = layoutFromMasks(masksOf(field));
    if (!layout) return false;
    header.setPixelFormat(layout->pixelFormat);
    header.setChannelType(layout->channelType);
    return true;
}

bool applyExtended(const ExtendedHeader& extended, CMOKTextureHeader& header) {
    const PublishedMatch match = findByDXGI(extended.dxgiFormat);
    if (match.format == nullptr) return false;
    header.setPixelFormat(match.format->pixelFormat);
    header.setChannelType(match.format->channelType);
    header.setColourSpace(match.colourSpace);
    header.setNumArrayMembers(extended.arraySize);
    if ((extended.miscFlag & miscCubeMap) != 0) header.setNumFaces(6);
    if ((extended.miscFlags2 & alphaModeMask) == alphaModePremultiplied) header.setIsPreMultiplied(true);
    return true;
}

/// Format, sizes and counts.
ELoadStatus applyDDSHeaders(const DDSHeaders& file, CMOKTextureHeader& header) {
    const ClassicHeader& classic = file.classic;
    header.setWidth(classic.width);
    header.setHeight(std::max(classic.height, 1u));
    header.setNumMIPLevels(std::max(classic.mipMapCount, 1u));
    const bool isVolume = file.isExtended() ? file.extended.dimension == dimension3D
                                            : (classic.caps2 & caps2Volume) != 0 || (classic.flags & flagDepth) != 0;
    if (isVolume) header.setDepth(std::max(classic.depth, 1u));
    if (file.isExtended()) return applyExtended(file.extended, header) ? eLoadOk : eLoadUnsupported;
    if ((classic.caps2 & caps2CubeMap) != 0) {
        // A cube map with some of its faces has no place in a texture.
        if ((classic.caps2 & caps2AllFaces) != caps2AllFaces && (classic.caps2 & caps2AllFaces) != 0) return eLoadUnsupported;
        header.setNumFaces(6);
    }
    return applyPixelFormat(classic.pixelFormat, header) ? eLoadOk : eLoadUnsupported;
}

ELoadStatus readDDSHeaders(ByteReader& source, DDSHeaders& file) {
    if (!source.readAll(&file.classic, sizeof(file.classic))) return truncatedStatus(source);
    if (file.classic.magic != magicWord) return eLoadUnknown;
    if (file.classic.size != 124) return eLoadCorrupt;
    if (file.isExtended() && !source.readAll(&file.extended, sizeof(file.extended))) return truncatedStatus(source);
    return eLoadOk;
}

/// Rows of the file are packed, or, in some files of uncompressed pixels, padded to 4 bytes.
std::uint64_t paddedRow(std::uint64_t rowBytes, bool isPadded) {
    return isPadded ? (rowBytes + 3) / 4 * 4 : rowBytes;
}

std::uint64_t fileBytes(const CMOKTextureHeader& header, bool isPadded) {
    const StoredLayout layout(header);
    std::uint64_t total = 0;
    for (std::uint32_t level = 0; level < header.getNumMIPLevels(); ++level)
        total += paddedRow(layout.rowBytes(level), isPadded) * layout.rows(level) * layout.slices(level);
    return total * header.getNumArrayMembers() * header.getNumFaces();
}

/// Calls `visit(layer, face, level)` in the order of a DDS file until it returns false.
template <class Visit>
bool forEachInFileOrder(const CMOKTextureHeader& header, Visit visit) {
    for (std::uint32_t layer = 0; layer < header.getNumArrayMembers(); ++layer)
        for (std::uint32_t face = 0; face < header.getNumFaces(); ++face)
            for (std::uint32_t level = 0; level < header.getNumMIPLevels(); ++level)
                if (!visit(layer, face, level)) return false;
    return true;
}

bool readPixels(ByteReader& source, bool isPadded, CMOKTexture& texture) {
    const StoredLayout layout(texture);
    return forEachInFileOrder(texture, [&](std::uint32_t layer, std::uint32_t face, std::uint32_t level) {
        unsigned char* target = storedSubresource(texture, level, layer, face);
        const std::uint64_t rowBytes = layout.rowBytes(level);
        if (!isPadded) return source.readAll(target, static_cast<std::size_t>(layout.subresourceBytes(level)));
        for (std::uint64_t row = 0; row < layout.rows(level) * layout.slices(level); ++row, target += rowBytes) {
            if (!source.readAll(target, static_cast<std::size_t>(rowBytes))) return false;
            source.seek(source.position() + paddedRow(rowBytes, true) - rowBytes);
        }
        return true;
    });
}

WriterFields writerFieldsOf(const CMOKTextureHeader& texture) {
    const PixelType format = texture.getPixelType();
    return {writerName,
            format.part.low,
            format.part.high,
            texture.getChannelType(),
            texture.getColourSpace(),
            texture.isPreMultiplied() ? 1u : 0u,
            {}};
}

/// Sizes, counts and capabilities, without a format.
ClassicHeader makeClassicHeader(const CMOKTextureHeader& texture) {
    ClassicHeader header{};
    const StoredLayout layout(texture);
    const bool isBlocks = isCompressed(texture.getPixelType());
    const bool hasLevels = texture.getNumMIPLevels() > 1, isVolume = texture.getDepth() > 1;
    header.magic = magicWord;
    header.size = 124;
    header.flags =
        flagsAlways | (isBlocks ? flagLinearSize : flagPitch) | (hasLevels ? flagMipMapCount : 0) | (isVolume ? flagDepth : 0);
    header.height = texture.getHeight();
    header.width = texture.getWidth();
    header.pitchOrLinearSize = static_cast<std::uint32_t>(isBlocks ? layout.subresourceBytes(0) : layout.rowBytes(0));
    header.depth = isVolume ? texture.getDepth() : 0;
    header.mipMapCount = texture.getNumMIPLevels();
    const bool isComplex = hasLevels || isVolume || texture.getNumFaces() > 1;
    header.caps = capsTexture | (hasLevels ? capsMipMap : 0) | (isComplex ? capsComplex : 0);
    header.caps2 = (texture.getNumFaces() == 6 ? caps2CubeMap | caps2AllFaces : 0) | (isVolume ? caps2Volume : 0);
    header.writer = writerFieldsOf(texture);
    header.pixelFormat.size = 32;
    return header;
}

/// The pixel format by a code or by masks; false if the classic header has neither.
bool setClassicFormat(const CMOKTextureHeader& texture, PixelFormatField& field) {
    const PixelType format = texture.getPixelType();
    const CodedFormat* const row = findCoded(format, texture.getChannelType());
    if (row != nullptr) {
        field.flags = pixelFourCC;
        field.code = row->code;
        return true;
    }
    if (isCompressed(format)) return false;
    const std::optional<PixelMasks> masks = masksFromLayout({format, texture.getChannelType()});
    if (!masks) return false;
    const bool hasAlpha = masks->masks[3] != 0;
    field.bitCount = masks->bitCount;
    std::copy(masks->masks.begin(), masks->masks.end(), field.masks);
    switch (masks->kind) {
        case MaskKind::rgb:
            field.flags = pixelRGB | (hasAlpha ? pixelAlphaPixels : 0);
            break;
        case MaskKind::luminance:
            field.flags = pixelLuminance | (hasAlpha ? pixelAlphaPixels : 0);
            break;
        case MaskKind::alpha:
            field.flags = pixelAlpha;
            break;
        case MaskKind::signedRGB:
            field.flags = pixelSigned;
            break;
        case MaskKind::bumpLuminance:
            field.flags = pixelBumpLuminance;
            break;
    }
    return true;
}

bool setExtendedFormat(const CMOKTextureHeader& texture, DDSHeaders& file) {
    const PublishedFormat* format = findPublished(texture.getPixelType(), texture.getChannelType());
    if (format == nullptr || format->dxgi.linear == 0) return false;
    const bool isSRGB = texture.getColourSpace() == eColourSpaceSRGB && format->dxgi.sRGB != 0;
    file.classic.pixelFormat.flags = pixelFourCC;
    file.classic.pixelFormat.code = fourCCOf("DX10");
    file.extended.dxgiFormat = isSRGB ? format->dxgi.sRGB : format->dxgi.linear;
    file.extended.dimension = texture.getDepth() > 1 ? dimension3D : dimension2D;
    file.extended.miscFlag = texture.getNumFaces() == 6 ? miscCubeMap : 0;
    file.extended.arraySize = texture.getNumArrayMembers();
    file.extended.miscFlags2 = texture.isPreMultiplied() ? alphaModePremultiplied : 0;
    return true;
}

/// Whether the published fields alone give a reader the header's image, but for the name of a format with the same bits.
bool saysAll(const DDSHeaders& file, const CMOKTextureHeader& texture) {
    CMOKTextureHeader header;
    if (applyDDSHeaders(file, header) != eLoadOk ||
        !haveSameBits(header.getPixelType(), header.getChannelType(), texture.getPixelType(), texture.getChannelType()))
        return false;
    header.setPixelFormat(texture.getPixelType());
    header.setChannelType(texture.getChannelType());
    return describeSameImage(header, texture);
}

/// Whether the published fields hold the sizes, counts and bits; the writer's fields hold the other properties.
bool saysShape(const DDSHeaders& file, const CMOKTextureHeader& texture) {
    CMOKTextureHeader plain = texture;
    CMOKTextureHeader header;
    if (applyDDSHeaders(file, header) != eLoadOk) return false;
    plain.setIsPreMultiplied(header.isPreMultiplied());
    plain.setColourSpace(header.getColourSpace());
    return saysAll(file, plain);
}

/// The headers that hold everything: the classic one where it can; nothing if none do.
std::optional<DDSHeaders> makeDDSHeaders(const CMOKTextureHeader& texture) {
    if (!hasPublishedShape(texture)) return std::nullopt;
    DDSHeaders classic, extended;
    classic.classic = extended.classic = makeClassicHeader(texture);
    const bool hasClassic = setClassicFormat(texture, classic.classic.pixelFormat);
    const bool hasExtended = setExtendedFormat(texture, extended);
    for (const auto& isEnough : {saysAll, saysShape}) {
        if (hasClassic && isEnough(classic, texture)) return classic;
        if (hasExtended && isEnough(extended, texture)) return extended;
    }
    return std::nullopt;
}

/// Applies the writer's fields, if the header is the one that this library writes for them; false if it is not.
bool applyWriterFields(const DDSHeaders& file, CMOKTextureHeader& header) {
    const WriterFields& writer = file.classic.writer;
    if (writer.name != writerName || writer.channelType > eVarNone || writer.colourSpace > eColourSpaceSRGB) return false;
    CMOKTextureHeader described = header;
    described.setPixelFormat(std::uint64_t{writer.pixelFormatHigh} << 32 | writer.pixelFormatLow);
    described.setChannelType(static_cast<EMOKTVariableType>(writer.channelType));
    described.setColourSpace(static_cast<EMOKTColourSpace>(writer.colourSpace));
    described.setIsPreMultiplied(writer.isPremultiplied != 0);
    const std::optional<DDSHeaders> expected = makeDDSHeaders(described);
    if (!expected || std::memcmp(&*expected, &file, sizeof(file)) != 0) return false;
    header = described;
    return true;
}

/// Sets the bits of a channel `x`, which mean nothing in files of other makers: here they are read where there is no alpha.
void setUnusedBits(CMOKTexture& texture) {
    const std::optional<PixelMasks> masks = masksFromLayout({texture.getPixelType(), texture.getChannelType()});
    if (isCompressed(texture.getPixelType()) || !masks) return;
    const std::uint64_t all = (std::uint64_t{1} << masks->bitCount) - 1;
    const std::uint64_t unused = all & ~std::uint64_t{masks->masks[0] | masks->masks[1] | masks->masks[2] | masks->masks[3]};
    if (unused == 0) return;
    const std::uint32_t pixelBytes = masks->bitCount / 8;
    unsigned char* const data = storedSubresource(texture, 0, 0, 0);
    for (std::uint64_t i = 0; i < StoredLayout(texture).totalBytes(); ++i)
        data[i] |= static_cast<unsigned char>(unused >> (8 * (i % pixelBytes)));
}

}  // namespace

ELoadStatus readStandardDDS(ByteReader& source, const LoadLimits& limits, CMOKTexture& texture) {
    DDSHeaders file;
    CMOKTextureHeader header;
    ELoadStatus status = readDDSHeaders(source, file);
    if (status == eLoadOk) status = applyDDSHeaders(file, header);
    if (status == eLoadOk) status = validateStored(header, limits, 0, 0);
    if (status != eLoadOk) return status;
    const bool isOurs = applyWriterFields(file, header);
    // A count that the flags do not announce is believed only where the levels are there.
    const bool announcesLevels = (file.classic.flags & flagMipMapCount) != 0 || (file.classic.caps & capsMipMap) != 0;
    if (!announcesLevels && fileBytes(header, false) > source.remaining()) header.setNumMIPLevels(1);
    const bool isPadded = !isCompressed(header.getPixelType()) && source.remaining() != fileBytes(header, false) &&
                          source.remaining() == fileBytes(header, true);
    if (fileBytes(header, isPadded) > source.remaining()) return eLoadTruncated;
    texture = makeStoredTexture(header);
    if (!readPixels(source, isPadded, texture)) return truncatedStatus(source);
    if (!isOurs) setUnusedBits(texture);
    return eLoadOk;
}

bool fitsStandardDDS(const CMOKTextureHeader& header) {
    return makeDDSHeaders(header).has_value();
}

bool writeStandardDDS(const CMOKTexture& texture, ByteWriter& target) {
    const std::optional<DDSHeaders> file = makeDDSHeaders(texture);
    if (!file || !hasStoredData(texture) || !target.write(&file->classic, sizeof(file->classic))) return false;
    if (file->isExtended() && !target.write(&file->extended, sizeof(file->extended))) return false;
    const StoredLayout layout(texture);
    return forEachInFileOrder(texture, [&](std::uint32_t layer, std::uint32_t face, std::uint32_t level) {
        return target.write(storedSubresource(texture, level, layer, face),
                            static_cast<std::size_t>(layout.subresourceBytes(level)));
    });
}

}  // namespace moktexture
