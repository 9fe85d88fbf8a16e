#include "transcode/pixels/value_source.h"

namespace moktexture {

namespace {

ValueSource fromConstant(float value) {
    return {ValueSource::constant, value, eChannelNone};
}

ValueSource fromChannel(EChannelName name) {
    return {ValueSource::channel, 0.0f, name};
}

/// Grey that stands in for a colour channel that the source lacks.
ValueSource greySource(const PixelCodec& source, const PixelCodec& destination) {
    const bool fromLuminance = source.has(eChannelLuminance);
    const bool fromIntensity = source.has(eChannelIntensity);
    if (!fromLuminance && !fromIntensity) return fromConstant(0.0f);
    if (!fromIntensity || (fromLuminance && destination.has(eChannelLuminance))) return fromChannel(eChannelLuminance);
    return fromChannel(eChannelIntensity);
}

ValueSource luminanceSource(const PixelCodec& source, const PixelCodec& destination) {
    if (source.has(eChannelLuminance)) return fromChannel(eChannelLuminance);
    if (source.has(eChannelIntensity))
        return destination.has(eChannelIntensity) ? fromConstant(0.0f) : fromChannel(eChannelIntensity);
    return {ValueSource::luminance, 0.0f, eChannelNone};
}

ValueSource intensitySource(const PixelCodec& source, const PixelCodec& destination) {
    if (source.has(eChannelLuminance) && destination.has(eChannelLuminance)) return fromConstant(0.0f);
    if (source.has(eChannelIntensity)) return fromChannel(eChannelIntensity);
    if (source.has(eChannelLuminance)) return fromChannel(eChannelLuminance);
    return destination.has(eChannelLuminance) ? fromConstant(0.0f) : ValueSource{ValueSource::mean, 0.0f, eChannelNone};
}

}  // namespace

ValueSource valueSourceOf(EChannelName name, const PixelCodec& source, const PixelCodec& destination) {
    if (name == eChannelLuminance) return luminanceSource(source, destination);
    if (name == eChannelIntensity) return intensitySource(source, destination);
    if (source.has(name)) return fromChannel(name);
    if (isColourChannel(name)) return greySource(source, destination);
    const EChannelName other = name == eChannelAlpha ? eChannelUnspecified : eChannelAlpha;
    return source.has(other) ? fromChannel(other) : fromConstant(1.0f);
}

bool areConvertible(const PixelCodec& source, const PixelCodec& destination) {
    return source.errorFlags == 0 && destination.errorFlags == 0 && source.variableType <= eVarFloat &&
           destination.variableType <= eVarFloat;
}

bool isColourChannel(EChannelName name) {
    return name != eChannelAlpha && name != eChannelUnspecified;
}

}  // namespace moktexture
