#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "CMOKTexture.h"
#include "core/texture/data_size.h"
#include "core/texture/subresources.h"

/// @file
/// What all image operations share: the acceptance test, the walk over the pieces of a texture, the choice of element type and
/// the replacement of a texture by a new one.
///
/// An operation in place is its level routine and one line:
/// @code
/// bool Invert(CMOKTexture& texture) {
///     return isOperable(texture) && processLevels(texture, [](auto* pixels, const Subresource& piece) { ... return true; });
/// }
/// @endcode
/// One that builds a new texture sets up that texture's header and calls rebuildLevels().

namespace moktexture {

/// One face of one array member at one MIP level.
struct Subresource {
    std::uint32_t member;
    std::uint32_t face;
    std::uint32_t level;
    LevelSize size;
};

/// Which MIP levels an operation visits.
enum class WalkedLevels { all, first };

/// Whether operations accept the texture: it has one of the four forms, its sizes are true, and its buffer, if there is one,
/// holds all pixels. A texture without a buffer or without pieces is accepted, and has nothing to be worked on.
bool isOperable(const CMOKTexture& texture);

/// Whether the texture has at least one member, one face and one level.
bool hasPieces(const CMOKTextureHeader& header);

/// Whether both textures have the same size in pixels and the same numbers of members, faces and levels.
bool haveEqualShape(const CMOKTextureHeader& a, const CMOKTextureHeader& b);

/// Address of a piece's first element, in a texture with a buffer.
template <typename T>
T* pieceData(const CMOKTexture& texture, const Subresource& piece) {
    return static_cast<T*>(texture.getDataPtr(piece.level, piece.member, piece.face));
}

/// Calls `routine(std::type_identity<T>)` with the element type T of an operable texture's channel type, and gives its result.
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

/// Calls `visit(const Subresource&)` for each member, in it each face, in it each level. The result is that of the last call: a
/// false result does not stop the walk. It is false at once for a texture without pieces or a buffer, whatever its counts.
template <typename Visit>
bool forEachSubresource(const CMOKTexture& texture, WalkedLevels levels, Visit&& visit) {
    if (!hasPieces(texture) || texture.getDataPtr() == nullptr) return false;
    const std::uint32_t levelCount = levels == WalkedLevels::all ? texture.getNumMIPLevels() : 1;
    bool result = false;
    Subresource piece = {};
    for (piece.member = 0; piece.member < texture.getNumArrayMembers(); ++piece.member) {
        for (piece.face = 0; piece.face < texture.getNumFaces(); ++piece.face) {
            for (piece.level = 0; piece.level < levelCount; ++piece.level) {
                piece.size = levelSize(texture, piece.level);
                result = visit(std::as_const(piece));
            }
        }
    }
    return result;
}

/// Runs `routine(T* pixels, const Subresource&)` on every piece of an operable texture, in place.
template <typename Routine>
bool processLevels(CMOKTexture& texture, Routine&& routine) {
    return withElementType(texture.getChannelType(), [&](auto element) {
        using T = typename decltype(element)::type;
        return forEachSubresource(texture, WalkedLevels::all,
                                  [&](const Subresource& piece) { return routine(pieceData<T>(texture, piece), piece); });
    });
}

/// Runs `routine(const T* source, T* destination, const Subresource&)` from every visited piece of an operable texture to the
/// same piece of another, which has the same element type and the pieces visited, in sizes of its own. The routine is told the
/// source's piece.
template <typename Routine>
bool processLevelsInto(const CMOKTexture& source, CMOKTexture& destination, WalkedLevels levels, Routine&& routine) {
    return withElementType(source.getChannelType(), [&](auto element) {
        using T = typename decltype(element)::type;
        return forEachSubresource(source, levels, [&](const Subresource& piece) {
            return routine(pieceData<const T>(source, piece), pieceData<T>(destination, piece), piece);
        });
    });
}

/// Replaces the texture by one of that header, zeroed and then filled by `fill(const CMOKTexture& source, CMOKTexture& rebuilt)`,
/// and gives the result of that; false does not undo it.
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
template <typename Routine>
bool rebuildLevels(CMOKTexture& texture, const CMOKTextureHeader& header, WalkedLevels levels, Routine&& routine) {
    return rebuild(texture, header, [&](const CMOKTexture& source, CMOKTexture& rebuilt) {
        return processLevelsInto(source, rebuilt, levels, routine);
    });
}

}  // namespace moktexture
