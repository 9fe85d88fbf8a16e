// Operations that change the orientation, the size or the number of MIP levels.

#include <algorithm>
#include <bit>
#include <cstring>

#include "moktex/operations/image_operation.h"
#include "moktex/operations/resample.h"
#include "moktex/report/console.h"

using namespace moktexture;

namespace moktextool {

namespace {

constexpr std::uint32_t largestEdge = 65536;

class FlipImage : public ImageOperation {
public:
    FlipImage(const std::string& givenText, EMOKTAxis flippedAxis) : ImageOperation(givenText), axis(flippedAxis) {}

    void plan(PlannedTexture& texture) const override {
        if (axis == eAxisZ && texture.size.depth == 1)
            texture.console.warn(texture.name + ": " + text + " changes nothing, because there is only one slice");
    }
    void apply(ImageSet& images, const OperationContext& context) const override {
        if (axis == eAxisX)
            return applyByBands(images, {text, [](CMOKTexture& band) { return Flip(band, eAxisX); }}, context.place);
        for (Surface& surface : images.surfaces) {
            for (Image& image : surface)
                flipRows(image);
        }
    }

private:
    /// Exchanges the rows of each slice, or the slices.
    void flipRows(Image& image) const {
        const std::uint64_t height = image.getSize().height, slices = image.getSize().depth;
        const auto exchange = [&](std::uint64_t a, std::uint64_t b, std::uint64_t rows) {
            std::swap_ranges(image.row(a), image.row(a) + rows * image.getRowSize(), image.row(b));
        };
        if (axis == eAxisZ) {
            for (std::uint64_t z = 0; z < slices / 2; ++z)
                exchange(z * height, (slices - 1 - z) * height, height);
            return;
        }
        for (std::uint64_t z = 0; z < slices; ++z) {
            for (std::uint64_t y = 0; y < height / 2; ++y)
                exchange(z * height + y, z * height + height - 1 - y, 1);
        }
    }

    const EMOKTAxis axis;
};

class QuarterTurn : public ImageOperation {
public:
    QuarterTurn(const std::string& givenText, bool clockwise) : ImageOperation(givenText), isClockwise(clockwise) {}

    void plan(PlannedTexture& texture) const override { std::swap(texture.size.width, texture.size.height); }
    bool undoSize(PlannedSize& size) const override {
        std::swap(size.width, size.height);
        return true;
    }
    void apply(ImageSet& images, const OperationContext& context) const override {
        for (Surface& surface : images.surfaces) {
            for (Image& image : surface)
                image = turn(image, context.place);
        }
        CMOKTextureHeader& header = images.header;
        const std::uint32_t width = header.getWidth();
        header.setWidth(header.getHeight());
        header.setHeight(width);
        unsigned int x, y, z;
        header.getBorder(x, y, z);
        if (x != y) header.setBorder(y, x, z);
    }

private:
    /// Rows of the image become columns, from the right if they turn clockwise.
    Image turn(const Image& image, const Workplace& place) const {
        const ImageSize& size = image.getSize();
        Image turned(image.getFormat(), {size.height, size.width, size.depth});
        const std::size_t pixelSize = image.getRowSize() / size.width;
        for (std::uint64_t z = 0; z < size.depth; ++z) {
            forEachBand({size.height, size.width, place.bandPixels}, [&](const RowBand& rows) {
                CMOKTexture band = copyBand(image, {z * size.height + rows.first, rows.count}, eColourSpaceLinear);
                requireSuccess(Rotate90(band, eAxisZ, isClockwise), place.name, text);
                const std::uint64_t column = isClockwise ? size.height - rows.first - rows.count : rows.first;
                const auto* from = static_cast<const unsigned char*>(band.getDataPtr());
                for (std::uint64_t y = 0; y < size.width; ++y, from += rows.count * pixelSize)
                    std::memcpy(turned.row(z * size.width + y) + column * pixelSize, from, rows.count * pixelSize);
            });
        }
        return turned;
    }

    const bool isClockwise;
};

class AddBorder : public ImageOperation {
public:
    AddBorder(const std::string& givenText, std::uint32_t borderX, std::uint32_t borderY)
        : ImageOperation(givenText), x(borderX), y(borderY) {}

    void plan(PlannedTexture& texture) const override {
        PlannedSize& size = texture.size;
        if (x > size.width || y > size.height)
            refuse(texture, ExitStatus::notSupported,
                   "wider than the picture, which is " + sizeText(size) + "; use at most " + std::to_string(size.width) + 'x' +
                       std::to_string(size.height));
        if (texture.hasBorder)
            refuse(texture, ExitStatus::notSupported, "there is a border already, whose width would be lost; start without it");
        if (texture.hasMadeLevels)
            refuse(texture, ExitStatus::commandLine, "drops the levels that --mipmaps made; give it before --mipmaps");
        if (size.levels > 1)
            texture.console.warn(texture.name + ": " + text + " keeps only the first level; --mipmaps after it makes new ones");
        size = {size.width + 2 * x, size.height + 2 * y, size.depth, 1};
        if (std::max(size.width, size.height) > largestEdge)
            refuse(texture, ExitStatus::notSupported,
                   "makes it " + sizeText(size) + ", and sides must be at most " + std::to_string(largestEdge) +
                       "; use a smaller one");
        texture.hasBorder = true;
    }
    bool undoSize(PlannedSize& size) const override {
        if (size.width < std::max(3 * x, 1u) || size.height < std::max(3 * y, 1u)) return false;
        size.width -= 2 * x;
        size.height -= 2 * y;
        return size.width > 0 && size.height > 0;
    }
    void apply(ImageSet& images, const OperationContext& context) const override {
        for (Surface& surface : images.surfaces) {
            surface.erase(surface.begin() + 1, surface.end());
            surface.front() = extend(surface.front(), context.place);
        }
        CMOKTextureHeader& header = images.header;
        header.setWidth(header.getWidth() + 2 * x);
        header.setHeight(header.getHeight() + 2 * y);
        header.setNumMIPLevels(1);
        header.setBorder(x, y, 0);
    }

private:
    /// The image with its rows mirrored above and below, and each of them left and right.
    Image extend(const Image& image, const Workplace& place) const {
        const ImageSize& size = image.getSize();
        Image extended(image.getFormat(), {size.width + 2 * x, size.height + 2 * y, size.depth});
        const std::uint64_t height = extended.getSize().height;
        const auto mirrored = [&](std::uint64_t row) -> std::uint64_t {
            if (row < y) return y - 1 - row;
            return row - y < size.height ? row - y : 2 * std::uint64_t{size.height} + y - 1 - row;
        };
        forEachBand({extended.countRows(), extended.getSize().width, place.bandPixels}, [&](const RowBand& rows) {
            CMOKTexture band = gatherBand(image, rows.count, eColourSpaceLinear, [&](std::uint32_t i) {
                const std::uint64_t row = rows.first + i;
                return row / height * size.height + mirrored(row % height);
            });
            requireSuccess(Border(band, x, 0, 0), place.name, text);
            std::memcpy(extended.row(rows.first), band.getDataPtr(), rows.count * extended.getRowSize());
        });
        return extended;
    }

    static std::string sizeText(const PlannedSize& size) {
        return std::to_string(size.width) + " x " + std::to_string(size.height);
    }

    const std::uint32_t x, y;
};

class Mipmaps : public ImageOperation {
public:
    Mipmaps(const std::string& givenText, std::uint32_t wantedLevels) : ImageOperation(givenText), levels(wantedLevels) {}

    void plan(PlannedTexture& texture) const override {
        const std::uint32_t largest = std::max({texture.size.width, texture.size.height, texture.size.depth});
        const auto fullChain = static_cast<std::uint32_t>(std::bit_width(largest));
        if (levels != allMIPLevels && levels > fullChain)
            refuse(texture, ExitStatus::commandLine,
                   "more than the full chain has; use --mipmaps, or at most " + std::to_string(fullChain));
        texture.size.levels = levels == allMIPLevels ? fullChain : levels;
        texture.hasMadeLevels = true;
    }
    bool isMipmaps() const override { return true; }
    void apply(ImageSet& images, const OperationContext& context) const override {
        const ImageSize size = sizeOf(images.header);
        const auto fullChain = static_cast<std::uint32_t>(std::bit_width(std::max({size.width, size.height, size.depth})));
        const std::uint32_t count = levels == allMIPLevels ? fullChain : levels;
        for (Surface& surface : images.surfaces) {
            surface.erase(surface.begin() + 1, surface.end());
            for (std::uint32_t level = 1; level < count; ++level)
                surface.push_back(resample(surface.back(), levelSize(size, level), context.mipSettings));
        }
        images.header.setNumMIPLevels(count);
    }

private:
    const std::uint32_t levels;
};

}  // namespace

OperationPointer parseFlip(const std::string& text, const std::string& value) {
    if (value != "x" && value != "y" && value != "z") throw Failure(ExitStatus::commandLine, text + ": no axis; use x, y or z");
    return std::make_unique<FlipImage>(text, value == "x" ? eAxisX : value == "y" ? eAxisY : eAxisZ);
}

OperationPointer parseRotate90(const std::string& text, const std::string& value) {
    if (value != "z" && value != "-z") {
        const bool isOtherAxis = value == "x" || value == "-x" || value == "y" || value == "-y";
        throw Failure(isOtherAxis ? ExitStatus::notSupported : ExitStatus::commandLine,
                      text + ": rotation about " + (isOtherAxis ? "x or y does not give a picture" : "an unknown axis") +
                          "; use z (clockwise) or -z");
    }
    return std::make_unique<QuarterTurn>(text, value == "z");
}

OperationPointer parseBorder(const std::string& text, const std::string& value) {
    const std::size_t cross = std::min(value.find('x'), value.size());
    const std::string first = value.substr(0, cross), second = cross < value.size() ? value.substr(cross + 1) : first;
    const std::uint32_t x = parseEdge(first), y = parseEdge(second);
    if ((x == 0 && first != "0") || (y == 0 && second != "0") || (x == 0 && y == 0))
        throw Failure(ExitStatus::commandLine, text + ": no width; use a number of pixels, or two as in 4x2");
    return std::make_unique<AddBorder>(text, x, y);
}

OperationPointer parseMipmaps(const std::string& text, const std::string& value) {
    if (value == "all") return std::make_unique<Mipmaps>("--mipmaps", allMIPLevels);
    const std::uint32_t levels = parseEdge(value);
    if (levels == 0 || levels > 255) throw Failure(ExitStatus::commandLine, text + ": no number of levels; use 1 to 17");
    return std::make_unique<Mipmaps>("--mipmaps=" + value, levels);
}

}  // namespace moktextool
