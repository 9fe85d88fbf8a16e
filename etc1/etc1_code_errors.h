#pragma once

#include <optional>

#include "etc1/etc1_search.h"
#include "etc1/etc1_table_lanes.h"

namespace moktexture::etc1 {

/// Squared errors of one channel of a half: for each pixel and modifier, in ascending order, with every table.
using ChannelErrors = std::array<std::array<TableLanes, modifierCount>, halfArea>;

/// The errors of a half with all base colours of a box, kept by channel. The error of a pixel is the sum of its channels', a
/// half's error the sum over its pixels of the least among the modifiers.
struct CodeErrors {
    static constexpr std::size_t mostCodes = greatestIndividualCode + 1;

    struct Channel {
        std::array<ChannelErrors, mostCodes> errors;  ///< by code, from the first of the box
        std::array<TableLanes, mostCodes> floors;     ///< by code: what this channel alone adds to a half's error at least
        TableLanes lowestFloor;                       ///< of all codes
    };

    CodeErrors(const Half& half, const CodeBox& box, Form form);

    CodeBox box;  ///< at most `mostCodes` wide
    std::array<Channel, channelCount> channels;
};

/// A base colour and the half's error with its best table.
struct ColourError {
    Codes codes;
    int error;
};

/// A bound: no colour of the box has a lower error.
int errorFloor(const CodeErrors& errors);

/// The first colour of least error in a box inside the tabulated one, if that error is at most `limit`. The search is quick if
/// colours near `start`, any codes, are good.
std::optional<ColourError> lowestError(const CodeErrors& errors, const CodeBox& box, const Codes& start, int limit);

/// Errors of the colours of a box of at most `widestBox` codes a channel, by their places in it.
inline constexpr int widestBox = 2 * wideRadius + 1;
inline constexpr int noError = blockErrorBound;
using BoxErrors = std::array<std::array<std::array<int, widestBox>, widestBox>, widestBox>;

/// The errors, red outermost, of all colours whose error is at most `limit`, and `noError` for the others. The tabulated box is
/// at most `widestBox` wide.
void collectErrors(const CodeErrors& errors, int limit, BoxErrors& collected);

}  // namespace moktexture::etc1
