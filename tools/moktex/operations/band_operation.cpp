#include "moktex/operations/band_operation.h"

#include <algorithm>
#include <cstring>

#include "moktex/report/console.h"

using namespace moktexture;

namespace moktextool {

namespace {

/// A band with the rows around it that its pixels depend on.
struct HaloedBand {
    CMOKTexture texture;
    std::uint32_t rowsAbove;
};

HaloedBand copyWithHalo(const Image& image, const RowBand& band, const BandOperation& operation, EMOKTColourSpace colourSpace) {
    const std::uint64_t rows = image.countRows(), end = band.first + band.count;
    const auto halo = [&](std::uint64_t present) {
        return operation.wraps ? operation.halo : static_cast<std::uint32_t>(std::min<std::uint64_t>(operation.halo, present));
    };
    const std::uint32_t above = halo(band.first), below = halo(rows - end);
    const auto rowOf = [&](std::uint32_t i) { return (band.first + rows * operation.halo + i - above) % rows; };
    return {gatherBand(image, above + band.count + below, colourSpace, rowOf), above};
}

void convertTo(CMOKTexture& band, const TextureFormat& format, const std::string& name) {
    if (formatOf(band) == format) return;
    requireSuccess(Transcode(band, format.pixelType, format.channelType, band.getColourSpace()), name, "a conversion");
}

/// Applies the operation to the rows of `source` and writes those of `target`, which may be the same image if there is no halo.
void applyToImage(const Image& source, Image& target, const BandOperation& operation, EMOKTColourSpace colourSpace,
                  const Workplace& place) {
    const ImageSize& size = source.getSize();
    const bool isWhole = size.depth > 1 && operation.halo > 0;
    const BandCut cut{source.countRows(), size.width, isWhole ? ~std::uint64_t{0} : place.bandPixels};
    forEachBand(cut, [&](const RowBand& band) {
        HaloedBand haloed = copyWithHalo(source, band, operation, colourSpace);
        CMOKTexture& texture = haloed.texture;
        if (isWhole) {
            texture.setHeight(size.height);
            texture.setDepth(size.depth);
        }
        convertTo(texture, operation.operand.value_or(source.getFormat()), place.name);
        requireSuccess(operation.apply(texture), place.name, operation.text);
        convertTo(texture, target.getFormat(), place.name);
        const std::uint64_t rowSize = target.getRowSize();
        std::memcpy(target.row(band.first), static_cast<const unsigned char*>(texture.getDataPtr()) + haloed.rowsAbove * rowSize,
                    band.count * rowSize);
    });
}

}  // namespace

void requireSuccess(bool succeeded, const std::string& name, const std::string& work) {
    if (!succeeded)
        throw Failure(ExitStatus::workFailed, name, work + " failed, most likely because of its size; use a smaller --resize");
}

void applyByBands(ImageSet& images, const BandOperation& operation, const Workplace& place) {
    applyByBands(images, operation, formatOf(images.header), place);
}

void applyByBands(ImageSet& images, const BandOperation& operation, const TextureFormat& result, const Workplace& place) {
    for (Surface& surface : images.surfaces) {
        for (Image& image : surface) {
            const EMOKTColourSpace colourSpace = images.header.getColourSpace();
            if (operation.halo == 0 && image.getFormat() == result) {
                applyToImage(image, image, operation, colourSpace, place);
                continue;
            }
            Image changed(result, image.getSize());
            applyToImage(image, changed, operation, colourSpace, place);
            image = std::move(changed);
        }
    }
    images.header.setPixelFormat(result.pixelType);
    images.header.setChannelType(result.channelType);
}

}  // namespace moktextool
