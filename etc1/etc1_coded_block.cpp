#include "etc1/etc1_coded_block.h"

namespace moktexture::etc1 {

CodedBlock codeBlock(const std::array<Half, 2>& halves, Split split, Form form, const std::array<Codes, 2>& codes,
                     BestTable bestTable) {
    CodedBlock coded{0, {static_cast<std::uint32_t>(form) << 1 | static_cast<std::uint32_t>(split), 0}};
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        coded.words.colours |= packChannel(codes[0][channel], codes[1][channel], form) << (24 - 8 * channel);
    for (std::size_t half = 0; half < 2; ++half) {
        const TableFit fit = bestTable(halves[half], expand(codes[half], form));
        coded.error += fit.error;
        coded.words.colours |= fit.table << (half == 0 ? 5 : 2);
        for (std::size_t n = 0; n < halfArea; ++n) {
            const std::size_t pixel = pixelNumber(split, half, n);
            coded.words.indices |= (fit.indices[n] & 1) << pixel | fit.indices[n] >> 1 << (pixel + 16);
        }
    }
    return coded;
}

}  // namespace moktexture::etc1
