#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "moktex/operations/format_change.h"

namespace moktextool {

/// An operation of the library on pixels that depend on few rows, applied to band after band.
struct BandOperation {
    std::string text;                                          ///< as on the command line
    std::function<bool(moktexture::CMOKTexture& band)> apply;  ///< false if the library refuses
    std::optional<TextureFormat> operand = {};                 ///< what the band is converted to before and from after
    std::uint32_t halo = 0;                                    ///< rows above and below that a row depends on
    bool wraps = false;                                        ///< the halo of the first row is the last one
};

/// Applies an operation that keeps sizes and format to all images; a volume with a halo as a whole.
void applyByBands(ImageSet& images, const BandOperation& operation, const Workplace& place);
/// The same for an operation that gives pixels of another format.
void applyByBands(ImageSet& images, const BandOperation& operation, const TextureFormat& result, const Workplace& place);

/// Throws a Failure if work that may need much memory did not succeed.
void requireSuccess(bool succeeded, const std::string& name, const std::string& work);

}  // namespace moktextool
