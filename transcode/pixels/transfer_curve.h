#pragma once

#include "texture_enums.h"

namespace moktexture {

/// The curves between linear and sRGB values, in single precision. Values up to the threshold, negative ones too, are scaled.
float linearToSRGB(float value);
float sRGBToLinear(float value);

using TransferCurve = float (*)(float);

/// The curve that takes a value from the space `source` to the space `target`; null where there is nothing to do.
TransferCurve transferCurve(EMOKTColourSpace target, EMOKTColourSpace source);

}  // namespace moktexture
