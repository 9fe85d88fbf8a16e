#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "CMOKTexture.h"
#include "core/texture/TextureInternals.h"
#include "core/texture/subresources.h"

/// @file
/// The frame that all image operations share. An operation has four steps, of which it writes the third itself:
///
///   1. isOperable(): refuse textures that are not in one of four pixel forms, or whose buffer is shorter than the header says.
///   2. withElementType(): choose the instance of the level routine by channel type, once for the texture.
///   3. The level routine: works on one LevelView, that is one face of one layer at one MIP level.
///   4. The loop: for each layer, for each face, for each MIP level, call the routine. The result is that of the last call; false
///      from a call does not end the loop; no call at all gives false.
///
/// An operation in place is its level routine and one statement:
/// @code
/// bool Invert(CMOKTexture& texture) {
///     return isOperable(texture) && processLevels(texture, [](const auto& level, const Subresource&) { ... return true; });
/// }
/// @endcode
/// One that builds a new texture prepares the new header and calls rebuildLevels():
///
///     rebuilt = texture of the new header, all pixels 0
///     for each layer, face and level:
///         result = routine(level of the texture, level of rebuilt)
///     texture = rebuilt, whatever the result is

namespace moktexture {

/// Elements of a pixel of an operable texture: red, green, blue, alpha.
inline constexpr std::size_t channelsPerPixel = 4;

/// A pixel that is moved without being interpreted: 4, 8 or 16 bytes.
template <std::size_t Size>
struct WholePixel {
    std::byte bytes[Size];
};

/// Array elements that a pixel takes: four channels, or one WholePixel.
template <typename T>
inline constexpr std::size_t elementsPerPixel = channelsPerPixel;
template <std::size_t Size>
inline constexpr std::size_t elementsPerPixel<WholePixel<Size>> = 1;

/// The pixels of one face of one layer at one MIP level: `size.depth` slices of `size.height` rows of `size.width` pixels,
/// without gaps. T is a channel's element (const for a level that is only read) or a WholePixel. Does not own the pixels.
template <typename T>
struct LevelView {
    T* data;
    LevelSize size;

    T* row(std::size_t y, std::size_t z) const { return pixel(0, y, z); }
    T* pixel(std::size_t x, std::size_t y, std::size_t z) const {
        return data + ((z * size.height + y) * size.width + x) * elementsPerPixel<std::remove_const_t<T>>;
    }
    operator LevelView<const T>() const requires(!std::is_const_v<T>) { return {data, size}; }
};

/// A level seen as whole pixels. 32-bit integers and floats give the same type.
template <typename T>
auto wholePixels(const LevelView<T>& level) {
    using Pixel = WholePixel<channelsPerPixel * sizeof(T)>;
    using SameConstness = std::conditional_t<std::is_const_v<T>, const Pixel, Pixel>;
    return LevelView<SameConstness>{reinterpret_cast<SameConstness*>(level.data), level.size};
}

/// The MIP levels that an operation visits.
enum class VisitedLevels { all, first };

/// Whether the image operations work on a pixel form: RGBA8 with eVarUByteNorm, RGBA16 with eVarUShortNorm, RGBA32 with
/// eVarUIntNorm or eVarFloat.
inline bool isOperableTexture(const PixelType& type, const EMOKTVariableType& channelType) {
    switch (channelType) {
        case eVarUByteNorm:
            return type == PixelTypeRGBA8;
        case eVarUShortNorm:
            return type == PixelTypeRGBA16;
        case eVarUIntNorm:
        case eVarFloat:
            return type == PixelTypeRGBA32;
        default:
            return false;
    }
}

/// Whether operations accept the texture: isOperableTexture(), its sizes fit in 32 bits, and its buffer, if it has one, holds all
/// pixels. Textures without a buffer, layers, faces or levels are accepted; they have no subresource to visit.
inline bool isOperable(const CMOKTexture& texture) {
    if (!isOperableTexture(texture.getPixelType(), texture.getChannelType()) || !sizesFit32Bits(texture)) return false;
    return texture.getDataPtr() == nullptr || texture.getDataSize() <= TextureInternals::dataSize(texture);
}

/// Whether both textures have the same dimensions and the same numbers of layers, faces and levels.
inline bool haveEqualShape(const CMOKTextureHeader& a, const CMOKTextureHeader& b) {
    return levelSize(a, 0) == levelSize(b, 0) && a.getNumArrayMembers() == b.getNumArrayMembers() &&
           a.getNumMIPLevels() == b.getNumMIPLevels() && a.getNumFaces() == b.getNumFaces();
}

/// A subresource of a texture; T is the element type of its channels, const or not.
template <typename T>
LevelView<T> levelView(const CMOKTexture& texture, const Subresource& subresource) {
    return {static_cast<T*>(texture.getDataPtr(subresource.level, subresource.layer, subresource.face)),
            levelSize(texture, subresource.level)};
}

/// Calls `routine(std::type_identity<T>)` with the element type T of an operable texture's channel type and returns its result.
template <typename Routine>
bool withElementType(EMOKTVariableType channelType, Routine&& routine) {
    switch (channelType) {
        case eVarUByteNorm:
            return routine(std::type_identity<std::uint8_t>());
        case eVarUShortNorm:
            return routine(std::type_identity<std::uint16_t>());
        case eVarUIntNorm:
            return routine(std::type_identity<std::uint32_t>());
        case eVarFloat:
            return routine(std::type_identity<float>());
        default:
            return false;
    }
}

/// forEachSubresource() with the result of the last `visit(const Subresource&)`. Returns false at once for a texture without a
/// buffer, layers, faces or levels, however large its other counts are.
template <typename Visit>
bool visitSubresources(const CMOKTexture& texture, VisitedLevels levels, Visit&& visit) {
    SubresourceCounts counts = subresourceCounts(texture);
    if (counts.layers == 0 || counts.faces == 0 || counts.levels == 0 || texture.getDataPtr() == nullptr) return false;
    if (levels == VisitedLevels::first) counts.levels = 1;
    bool result = false;
    forEachSubresource(texture, counts, [&](const Subresource& subresource) { result = visit(subresource); });
    return result;
}

/// Runs `routine(const LevelView<T>&, const Subresource&)` on every subresource of an operable texture, in place.
template <typename Routine>
bool processLevels(CMOKTexture& texture, Routine&& routine) {
    return withElementType(texture.getChannelType(), [&](auto element) {
        using T = typename decltype(element)::type;
        return visitSubresources(texture, VisitedLevels::all, [&](const Subresource& subresource) {
            return routine(levelView<T>(texture, subresource), subresource);
        });
    });
}

/// Stands for the element type of the source.
struct SourceElement {};

/// Runs `routine(const LevelView<const T>& source, const LevelView<D>& destination, const Subresource&)` from every visited
/// subresource of an operable texture to the same one of another texture, which has all of them. D is Destination, or T.
template <typename Destination = SourceElement, typename Routine>
bool processLevelsInto(const CMOKTexture& source, CMOKTexture& destination, VisitedLevels levels, Routine&& routine) {
    return withElementType(source.getChannelType(), [&](auto element) {
        using T = typename decltype(element)::type;
        using D = std::conditional_t<std::is_same_v<Destination, SourceElement>, T, Destination>;
        return visitSubresources(source, levels, [&](const Subresource& subresource) {
            return routine(levelView<const T>(source, subresource), levelView<D>(destination, subresource), subresource);
        });
    });
}

/// Replaces the texture by one of the header, zeroed and then filled by `fill(const CMOKTexture& source, CMOKTexture& rebuilt)`,
/// and returns the result of that; false does not undo the replacement.
/// @return false too, with the texture unchanged, if the header's sizes do not fit in 32 bits
template <typename Fill>
bool rebuild(CMOKTexture& texture, const CMOKTextureHeader& header, Fill&& fill) {
    if (!sizesFit32Bits(header)) return false;
    CMOKTexture rebuilt(header, nullptr);
    const bool result = fill(std::as_const(texture), rebuilt);
    texture = std::move(rebuilt);
    return result;
}

/// rebuild() by processLevelsInto().
template <typename Destination = SourceElement, typename Routine>
bool rebuildLevels(CMOKTexture& texture, const CMOKTextureHeader& header, VisitedLevels levels, Routine&& routine) {
    return rebuild(texture, header, [&](const CMOKTexture& source, CMOKTexture& rebuilt) {
        return processLevelsInto<Destination>(source, rebuilt, levels, routine);
    });
}

}  // namespace moktexture
