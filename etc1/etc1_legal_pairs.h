#pragma once

#include "etc1/etc1_code_errors.h"

namespace moktexture::etc1 {

/// Two colours that a differential block can hold and the sum of their errors.
struct PairError {
    std::array<Codes, 2> codes;
    int error;
};

/// The first pair of least error that is legal, first colours of one box before second colours of the other, red outermost.
/// Colours without an error take no part; the result's error is at least `noError` if no pair is left.
PairError bestLegalPair(const BoxErrors& firstErrors, const CodeBox& first, const BoxErrors& secondErrors, const CodeBox& second);

}  // namespace moktexture::etc1
