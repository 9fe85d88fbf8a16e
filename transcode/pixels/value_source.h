#pragma once

#include "transcode/pixels/PixelCodec.h"

namespace moktexture {

/// Where a destination channel takes its value from. It depends on the two layouts only.
struct ValueSource {
    enum Kind {
        constant,   ///< the number `value`
        channel,    ///< the source's channel `name`
        luminance,  ///< weighted sum of the source's colour channels
        mean,       ///< mean of the source's colour channels
    };
    Kind kind;
    float value;
    EChannelName name;
};

/// The source of the channel `name`, which `destination` has, as PixelCodec::convertFrom() takes it.
ValueSource valueSourceOf(EChannelName name, const PixelCodec& source, const PixelCodec& destination);

/// Whether both layouts are free of errors and have channels of a known type.
bool areConvertible(const PixelCodec& source, const PixelCodec& destination);

/// Whether a curve applies to the channel.
bool isColourChannel(EChannelName name);

}  // namespace moktexture
