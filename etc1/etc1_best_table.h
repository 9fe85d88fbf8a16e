#pragma once

#include "etc1/etc1_subblock.h"

namespace moktexture::etc1 {

/// A subblock's modifiers around a base colour.
struct TableFit {
    int error;
    std::uint32_t table;
    std::array<std::uint32_t, subblockArea> indices;  ///< of the subblock's pixels
    bool operator==(const TableFit&) const = default;
};

/// Finds the modifier table of lowest error around a base colour, and for each pixel the modifier of lowest error in that table.
/// Of equal tables the first one wins, of equal modifiers the lowest.
/// Kept (etc1-truncated-error): perceptual errors are compared as floats here but returned truncated to integers, so that base
/// colours within 1 of each other tie and the first one tried wins; without that, blocks encoded at qualities 1, 3 and 5 would
/// differ from those in stored .mok files.
TableFit BestTable(const Subblock& subblock, const Colour& base);

/// A complete block and the sum of its subblocks' errors.
struct CodedBlock {
    int error;
    BlockWords words;
};

/// Packs base colours and modifiers into a block.
CodedBlock packBlock(Split split, ColourMode mode, const std::array<Codes, 2>& codes, const std::array<TableFit, 2>& fits);

/// Chooses the modifiers of both subblocks around their base colours and packs the block.
CodedBlock codeBlock(const Subblocks& subblocks, Split split, ColourMode mode, const std::array<Codes, 2>& codes);

}  // namespace moktexture::etc1
