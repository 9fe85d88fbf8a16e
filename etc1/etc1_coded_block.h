#pragma once

#include "etc1/etc1_best_table.h"

namespace moktexture::etc1 {

/// A block whose halves have their colours and modifiers.
struct CodedBlock {
    int error;
    BlockWords words;
};

/// Chooses the modifiers for both halves and packs the block; the error is the sum of the halves'.
CodedBlock codeBlock(const std::array<Half, 2>& halves, Split split, Form form, const std::array<Codes, 2>& codes,
                     BestTable bestTable);

}  // namespace moktexture::etc1
