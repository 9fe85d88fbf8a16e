#include "transcode/pixels/transfer_curve.h"

#include "transcode/pixels/fixed_power.h"

namespace moktexture {

namespace {

// Kept: these are the library's own constants; converted textures hold them.
constexpr float linearThreshold = 0.00304f;
constexpr float sRGBThreshold = 0.03928f;
constexpr float slope = 12.92f;
constexpr float scale = 1.0556f;
constexpr float offset = 0.0556f;
constexpr float toSRGBExponent = 0.41666666f;
constexpr float toLinearExponent = 2.4f;

}  // namespace

float linearToSRGB(float value) {
    if (linearThreshold >= value) return value * slope;
    return fixedPower(value, toSRGBExponent) * scale - offset;
}

float sRGBToLinear(float value) {
    if (sRGBThreshold >= value) return value / slope;
    return fixedPower((value + offset) / scale, toLinearExponent);
}

TransferCurve transferCurve(EMOKTColourSpace target, EMOKTColourSpace source) {
    if (source == eColourSpaceLinear && target == eColourSpaceSRGB) return linearToSRGB;
    if (source == eColourSpaceSRGB && target == eColourSpaceLinear) return sRGBToLinear;
    return nullptr;
}

}  // namespace moktexture
