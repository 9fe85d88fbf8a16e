#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "CMOKTexture.h"
#include "core/level_size.h"

/// @file
/// What all image operations share: the acceptance test, the walk over the pieces of a texture and the choice of element type.
///
/// An operation in place is its level routine and one line:
/// @code
/// bool Invert(CMOKTexture& texture) {
///     return isOperable(texture) && processLevels(texture, [](auto* pixels, const TexturePiece& piece) { ... return true; });
/// }
/// @endcode

namespace moktexture {

/// One face of one array member at one MIP level.
struct TexturePiece {
    std::uint32_t member;
    std::uint32_t face;
    std::uint32_t level;
    LevelSize size;
};

/// Which MIP levels an operation visits.
enum class WalkedLevels { all, first };

/// Whether an operation may touch the texture: it has one of the four forms, and all its pixels lie in its buffer.
bool isOperable(const CMOKTexture& texture);

/// Whether both textures have the same size in pixels and the same numbers of members, faces and levels.
bool haveEqualShape(const CMOKTextureHeader& a, const CMOKTextureHeader& b);

/// Address of a piece's first element, or null.
template <typename T>
T* pieceData(const CMOKTexture& texture, const TexturePiece& piece) {
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

/// Calls `visit(const TexturePiece&)` for each member, in it each face, in it each level. The result is that of the last call, or
/// false if there was none: a false result does not stop the walk.
template <typename Visit>
bool walkPieces(const CMOKTextureHeader& header, WalkedLevels levels, Visit&& visit) {
    const std::uint32_t levelCount = levels == WalkedLevels::all ? header.getNumMIPLevels() : 1;
    bool result = false;
    TexturePiece piece = {};
    for (piece.member = 0; piece.member < header.getNumArrayMembers(); ++piece.member) {
        for (piece.face = 0; piece.face < header.getNumFaces(); ++piece.face) {
            for (piece.level = 0; piece.level < levelCount; ++piece.level) {
                piece.size = levelSize(header, piece.level);
                result = visit(std::as_const(piece));
            }
        }
    }
    return result;
}

/// Runs `routine(T* pixels, const TexturePiece&)` on every piece of an operable texture, in place.
template <typename Routine>
bool processLevels(CMOKTexture& texture, Routine&& routine) {
    return withElementType(texture.getChannelType(), [&](auto element) {
        using T = typename decltype(element)::type;
        return walkPieces(texture, WalkedLevels::all, [&](const TexturePiece& piece) {
            T* const pixels = pieceData<T>(texture, piece);
            return pixels != nullptr && routine(pixels, piece);
        });
    });
}

/// Runs `routine(const T* source, T* destination, const TexturePiece&)` from every visited piece of an operable texture to the
/// same piece of another, which has the same element type and the pieces visited, in sizes of its own. The routine is told the
/// source's piece.
template <typename Routine>
bool processLevelsInto(const CMOKTexture& source, CMOKTexture& destination, WalkedLevels levels, Routine&& routine) {
    return withElementType(source.getChannelType(), [&](auto element) {
        using T = typename decltype(element)::type;
        return walkPieces(source, levels, [&](const TexturePiece& piece) {
            const T* const from = pieceData<const T>(source, piece);
            T* const to = pieceData<T>(destination, piece);
            return from != nullptr && to != nullptr && routine(from, to, piece);
        });
    });
}

}  // namespace moktexture
