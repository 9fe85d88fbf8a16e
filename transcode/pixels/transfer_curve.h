#pragma once

#include "texture_enums.h"

namespace moktexture {

/// `base` to the power of `exponent`, the same on every platform, with a relative error below 2^-49 before the one rounding to
/// float. `base` is above 0, infinite or NaN; `exponent` is above 0 and at most 4.
float fixedPower(float base, float exponent);

/// The curves between linear and sRGB values, in single precision. Values up to the threshold, negative ones too, are on the
/// linear segment.
float linearToSRGB(float value);
float sRGBToLinear(float value);

using TransferCurve = float (*)(float);

/// The curve that takes a value from the space `source` to the space `target`; null where there is nothing to do.
TransferCurve transferCurve(EMOKTColourSpace target, EMOKTColourSpace source);

}  // namespace moktexture
