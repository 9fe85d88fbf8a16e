#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/base/instruction_set.h"
#include "transcode/pixels/channel_access.h"

namespace moktexture {

/// A pair of layouts to convert between.
struct ConversionRequest {
    const PixelCodec& from;
    const PixelCodec& to;
    EMOKTColourSpace target;  ///< where target and source differ, colour channels go through the curve
    EMOKTColourSpace source;
    std::uint64_t pixels;  ///< number to convert in total: more pixels justify more preparation
    InstructionSet instructionSet;
};

/// Conversion channel by channel, with all decisions that depend on the layouts made beforehand.
class ConversionPlan {
public:
    /// The layouts are such that areConvertible().
    explicit ConversionPlan(const ConversionRequest& request);

    void convert(const std::uint8_t* from, std::uint8_t* to, std::size_t pixels) const;

private:
    /// One destination channel: its value and its writer.
    struct Assignment {
        void evaluate(const PixelBits* pixels, std::size_t count, float* values) const;

        ValueSource source;
        /// Of the one channel, or of the colour channels that are mixed, with their weights.
        std::vector<ChannelReader> readers;
        std::vector<float> weights;
        ChannelWriter writer;
    };
    /// A written channel that is read back and goes through the curve.
    struct CurvedChannel {
        ChannelReader reader;
        ChannelWriter writer;
    };

    static Assignment assignmentOf(EChannelName name, const PixelCodec& from, const PixelCodec& to);
    void convertBlock(const PixelBits* pixels, std::size_t count, PixelBits* results) const;

    std::size_t sourceBytes;
    std::size_t destinationBytes;
    PixelBits sourceRest;                       ///< what the source's buffer holds above the pixel
    std::vector<Assignment> assignments;        ///< in the order of EChannelName
    std::vector<CurvedChannel> curvedChannels;  ///< in the order of EChannelName
};

}  // namespace moktexture
