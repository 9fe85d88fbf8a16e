#pragma once

#include <optional>

#include "etc1/etc1_encoder.h"
#include "etc1/etc1_subblock.h"

/// @file
/// The errors of a subblock around all base colours of a box, and the searches in them.

namespace moktexture::etc1 {

/// Squared errors of one channel of a subblock: for each pixel and modifier, in ascending order, with every table.
using ChannelErrors = std::array<std::array<TableLanes, modifierCount>, subblockArea>;

/// The errors around the base colours of a box, tabulated by channel and code. About 47 KB.
struct CodeErrors {
    static constexpr std::size_t maxCodes = greatestIndividualCode + 1;

    struct Channel {
        std::array<ChannelErrors, maxCodes> errors;    ///< by code, from the first of the box
        std::array<TableLanes, maxCodes> lowerBounds;  ///< by code: the minimum that this channel adds to a subblock's error
        TableLanes lowestBound;                        ///< of all codes
    };

    /// The box is at most `maxCodes` wide.
    CodeErrors(const Subblock& subblock, const CodeBox& codeBox, ColourMode mode);

    CodeBox box;
    std::array<Channel, channelCount> channels;
};

/// A base colour and the subblock's error with its best table, as BestTable computes it.
struct ColourError {
    Codes codes;
    int error;
};

/// No colour of the box has a lower error than this.
int errorLowerBound(const CodeErrors& errors);

/// The first colour of lowest error, red outermost, in a box inside the tabulated one, if that error is at most `limit`. The
/// search is fast if colours near `start`, any codes, are good.
std::optional<ColourError> lowestError(const CodeErrors& errors, const CodeBox& box, const Codes& start, int limit);

/// Errors of the colours of a box of at most `maxBoxEdge` codes per channel, by their offsets from its first code.
inline constexpr int maxBoxEdge = 2 * wideRadius + 1;
using BoxErrors = std::array<std::array<std::array<int, maxBoxEdge>, maxBoxEdge>, maxBoxEdge>;

/// Marks an error above the limit.
inline constexpr int noError = blockErrorBound;

/// The errors of all colours whose error is at most `limit`, and `noError` for the others. The tabulated box is at most
/// `maxBoxEdge` wide.
void collectErrors(const CodeErrors& errors, int limit, BoxErrors& collected);

/// Two base colours that a differential block can store and the sum of their errors.
struct PairError {
    std::array<Codes, 2> codes;
    int error;
};

/// Errors of the first or second base colours of a differential block.
struct PairSide {
    const BoxErrors& errors;
    const CodeBox& box;
};

/// The first legal pair of lowest error: colours of the first box before colours of the second one, red outermost. Colours
/// without an error are left out; the result's error is at least `noError` if no pair remains.
PairError lowestLegalPair(const PairSide& first, const PairSide& second);

}  // namespace moktexture::etc1
