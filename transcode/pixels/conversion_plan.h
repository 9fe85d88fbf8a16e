#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "transcode/pixels/channel_access.h"
#include "transcode/pixels/value_source.h"

namespace moktexture {

/// Conversion between any two layouts without errors, through floats like the plain code, with everything settled beforehand that
/// depends on the layouts.
class ConversionPlan {
public:
    /// @param pixels  how many pixels will be converted: larger tables pay from some number on
    /// The layouts are such that areConvertible().
    ConversionPlan(const PixelCodec& from, const PixelCodec& to, EMOKTColourSpace target, EMOKTColourSpace source,
                   std::uint64_t pixels);

    void convert(const std::uint8_t* from, std::uint8_t* to, std::size_t pixels) const;

private:
    /// One destination channel: the value it takes, and how it is written.
    struct Assignment {
        void evaluate(const PixelBits* pixels, std::size_t count, float* values) const;

        ValueSource source;
        /// Of the channel, or of the colour channels of a mix with their weights.
        std::vector<ChannelReader> readers;
        std::vector<float> weights;
        ChannelWriter writer;
    };
    /// A written channel that goes through the curve.
    struct CurvedChannel {
        ChannelReader reader;
        ChannelWriter writer;
    };

    static Assignment assignmentOf(EChannelName name, const PixelCodec& from, const PixelCodec& to);
    void convertBlock(const PixelBits* pixels, std::size_t count, PixelBits* results) const;

    std::size_t sourceBytes;
    std::size_t destinationBytes;
    PixelBits sourceRest;                       ///< what the source's buffer holds beyond the pixel
    std::vector<Assignment> assignments;        ///< in the order of EChannelName
    std::vector<CurvedChannel> curvedChannels;  ///< likewise
};

}  // namespace moktexture
