#include "moktc/amtc/records/level_records.h"

#include <cstdio>
#include <cstdlib>

namespace moktexture::amtc {

AmtcLevelSettings makeLevelSettings(std::int32_t width, std::int32_t height, BlockVariant variant) {
    AmtcLevelSettings settings{};
    settings.formatVersion = 4;
    settings.bitsPerPixel = static_cast<std::uint8_t>(variant.rate);
    settings.blockWidth = variant.rate == Rate::fourBpp ? 4 : 8;
    settings.blockHeight = variant.rate == oneBpp ? 8 : 4;
    settings.footprintWidth = static_cast<std::uint8_t>(2 * settings.blockWidth + 1);
    settings.footprintHeight = static_cast<std::uint8_t>(2 * settings.blockHeight + 1);
    settings.secondGeneration = variant.isSecondGeneration() ? 1 : 0;
    settings.blocksDown = static_cast<std::uint32_t>(height) / settings.blockHeight;
    settings.blocksAcross = static_cast<std::uint32_t>(width) / settings.blockWidth;
    return settings;
}

const Candidate& BlockRecord::best() const {
    // Records are in the order of their modes, which start at 0 or at 8.
    return repStarts[bestMode % maxRegionModes].candidates[0];
}

std::uint32_t ListRegionModes(const AmtcLevelSettings& settings, bool extended, RegionModeList& list) {
    if (settings.bitsPerPixel == 1) {
        // Kept (mode-list-names-another-routine): the message names `OptimiseRegion`, which lists no modes. Front ends that
        // search the log of an encoder for this sentence find it.
        std::fputs("Exiting! 1bpp not yet implemented (OptimiseRegion)\n", stderr);
        std::abort();
    }
    const std::uint32_t first = settings.bitsPerPixel == 4 ? region_mode::standard : region_mode::direct;
    const std::uint32_t perGeneration = settings.bitsPerPixel == 4 ? 2 : 4;
    const std::uint32_t count = settings.secondGeneration != 0 && extended ? 2 * perGeneration : perGeneration;
    for (std::uint32_t i = 0; i < count; ++i)
        list[i] = first + i;
    return count;
}

bool AllocateBlockRows(std::int32_t width, std::int32_t height, std::uint32_t blockWidth, std::uint32_t blockHeight,
                       BlockRows& blockRows) {
    blockRows.fill(nullptr);
    const std::uint32_t blocksAcross = static_cast<std::uint32_t>(width) / blockWidth;
    const std::uint32_t blocksDown = static_cast<std::uint32_t>(height) / blockHeight;
    for (std::uint32_t row = 0; row < blocksDown; ++row) {
        blockRows[row] = static_cast<BlockRecord*>(std::calloc(blocksAcross, sizeof(BlockRecord)));
        if (blockRows[row] == nullptr) {
            FreeBlockRows(blockRows);
            return false;
        }
    }
    return true;
}

void FreeBlockRows(BlockRows& blockRows) {
    for (BlockRecord*& row : blockRows) {
        std::free(row);
        row = nullptr;
    }
}

void LoadFootprint(const AmtcImage& image, std::uint32_t centreX, std::uint32_t centreY, const AmtcLevelSettings& settings,
                   Footprint& footprint) {
    const std::uint32_t width = static_cast<std::uint32_t>(image.Width), height = static_cast<std::uint32_t>(image.Height);
    std::uint32_t* pixel = footprint.data();
    std::uint32_t y = (centreY + height - settings.blockHeight % height) % height;
    for (std::uint32_t row = 0; row < settings.footprintHeight; ++row) {
        std::uint32_t x = (centreX + width - settings.blockWidth % width) % width;
        for (std::uint32_t column = 0; column < settings.footprintWidth; ++column) {
            *pixel++ = image.Pixels[y][x];
            x = x + 1 == width ? 0 : x + 1;
        }
        y = y + 1 == height ? 0 : y + 1;
    }
}

void LoadBlockFootprint(const AmtcImage& image, std::uint32_t row, std::uint32_t column, const AmtcLevelSettings& settings,
                        Footprint& footprint) {
    LoadFootprint(image, settings.blockWidth * column + settings.blockWidth / 2u,
                  settings.blockHeight * row + settings.blockHeight / 2u, settings, footprint);
}

Neighbourhood gatherNeighbourhood(const BlockRows& blockRows, const AmtcLevelSettings& settings, std::uint32_t row,
                                  std::uint32_t column) {
    Neighbourhood neighbourhood{};
    for (std::uint32_t i = 0; i < neighbourhood.size(); ++i) {
        const std::uint32_t neighbourRow = (row + settings.blocksDown + i / 3 - 1) % settings.blocksDown;
        const std::uint32_t neighbourColumn = (column + settings.blocksAcross + i % 3 - 1) % settings.blocksAcross;
        neighbourhood[i] = &blockRows[neighbourRow][neighbourColumn];
    }
    return neighbourhood;
}

}  // namespace moktexture::amtc
