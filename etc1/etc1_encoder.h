#pragma once

#include "etc1/etc1_quick_candidates.h"
#include "etc1/etc1_search.h"

namespace moktexture::etc1 {

/// The encoder's searches in one form. Both forms give the same bytes.
struct EncoderForm {
    const char* name;
    BestTable bestTable;
    CompressBlockSearch search;
};

/// Tries everything in the order that decides ties.
extern const EncoderForm plainEncoder;
/// What the codec runs.
extern const EncoderForm boundedEncoder;

/// Encodes a level that is not empty in a quality from 0 to 5. False if there was no memory for the scratch row.
bool encodeLevel(const std::uint8_t* pixels, std::uint8_t* out, const Level& level, std::uint32_t quality,
                 const EncoderForm& form);

}  // namespace moktexture::etc1
