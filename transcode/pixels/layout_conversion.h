#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "core/base/instruction_set.h"
#include "transcode/pixels/PixelCodec.h"
#include "transcode/pixels/byte_shuffle.h"
#include "transcode/pixels/conversion_plan.h"
#include "transcode/pixels/table_conversion.h"

namespace moktexture {

/// The byte moves that do what the tables do; nothing if some byte is neither a source byte nor a constant.
std::optional<ByteShuffle> makeByteShuffle(const TableConversion& tables);

/// The conversion between two layouts and colour spaces, in the fastest form that the pair allows. All forms give the same bytes.
class LayoutConversion {
public:
    enum class Form { plain, settled, tables, byteShuffleSSE41 };

    /// @param pixels  how many pixels will be converted in all; few of them are not worth any preparation
    LayoutConversion(const PixelCodec& from, const PixelCodec& to, EMOKTColourSpace target, EMOKTColourSpace source,
                     std::uint64_t pixels, InstructionSet level);

    Form form() const { return chosenForm; }
    void convert(const std::uint8_t* from, std::uint8_t* to, std::size_t pixels);

    /// The plain form: pixel by pixel through PixelCodec.
    static void convertPlain(PixelCodec& fromCodec, PixelCodec& toCodec, EMOKTColourSpace target, EMOKTColourSpace source,
                             const std::uint8_t* from, std::uint8_t* to, std::size_t pixels);

private:
    void prepare(std::uint64_t pixels, InstructionSet level);

    PixelCodec fromCodec;
    PixelCodec toCodec;
    EMOKTColourSpace targetSpace;
    EMOKTColourSpace sourceSpace;
    Form chosenForm = Form::plain;
    std::optional<ConversionPlan> settled;
    std::optional<TableConversion> tables;
    std::optional<ByteShuffle> moves;
};

}  // namespace moktexture
