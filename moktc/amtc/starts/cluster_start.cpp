#include "moktc/amtc/starts/cluster_start.h"

#include <algorithm>

#include "moktc/amtc/starts/colour_quantiser.h"

namespace moktexture::amtc {

namespace {

constexpr std::size_t discWidth = 9;
constexpr std::array<std::size_t, 7> discSpans = {3, 5, 7, 7, 7, 5, 3};  ///< pixels in rows 1 to 7
constexpr std::size_t discPixels = 37;

/// Positions in the footprint of the pixels of a disc around its centre, in raster order.
constexpr std::array<std::uint8_t, discPixels> discPositions = [] {
    std::array<std::uint8_t, discPixels> positions{};
    std::size_t count = 0;
    for (std::size_t row = 0; row < discSpans.size(); ++row) {
        for (std::size_t i = 0; i < discSpans[row]; ++i)
            positions[count++] = static_cast<std::uint8_t>((row + 1) * discWidth + (discWidth - discSpans[row]) / 2 + i);
    }
    return positions;
}();
using DiscColours = std::array<std::uint32_t, discPixels>;

constexpr std::size_t mostClusters = 5;
constexpr int steps = 11;
constexpr std::uint32_t closeEnough = 36;  ///< squared distance

struct Cluster {
    std::uint32_t centre;
    ColourPair stored;  ///< the centre as colour A and as colour B hold it
    std::uint32_t count;
    std::array<std::uint32_t, channelCount> sums;
};

struct Clusters {
    std::size_t count = 0;
    std::array<Cluster, mostClusters> list{};
};

/// The alpha of both stored forms.
std::uint32_t alphaOfCentre(std::uint32_t centre) {
    constexpr std::uint32_t lowestOpaqueCentre = 250;
    // Kept: B's is one of A's even values, though a block's translucent B has odd ones and will come out 17 higher; encoded files
    // depend on it.
    const std::uint32_t alpha = channelOf(centre, alphaChannel);
    return alpha < lowestOpaqueCentre ? QuantiseAlpha(static_cast<float>(alpha), 0) : 255;
}

std::uint32_t quantiseCentre(std::uint32_t centre, std::uint32_t alpha, const std::array<ChannelBits, 2>& bits) {
    std::uint32_t stored = alpha << 8 * alphaChannel;
    for (std::size_t channel = 0; channel < alphaChannel; ++channel)
        stored |= QuantiseChannelByte(channelOf(centre, channel), bits[alpha == 255 ? 1 : 0][channel], true) << 8 * channel;
    return stored;
}

void setCentre(Cluster& cluster, std::uint32_t centre) {
    const std::uint32_t alpha = alphaOfCentre(centre);
    cluster.centre = centre;
    cluster.stored = {quantiseCentre(centre, alpha, bitsOfA), quantiseCentre(centre, alpha, bitsOfB)};
}

void addCluster(Clusters& clusters, std::uint32_t seed) {
    setCentre(clusters.list[clusters.count++], seed);
}

/// Two clusters, of the pixels that lie lowest and highest on the axis.
Clusters seedClusters(const DiscColours& colours, const ColourVector& axis) {
    std::uint32_t lowest = colours[0], highest = colours[0];
    float least = dotProduct(toVector(colours[0]), axis), greatest = least;
    for (const std::uint32_t colour : colours) {
        const float projection = dotProduct(toVector(colour), axis);
        if (projection < least) {
            least = projection;
            lowest = colour;
        }
        if (projection > greatest) {
            greatest = projection;
            highest = colour;
        }
    }
    Clusters clusters;
    addCluster(clusters, lowest);
    addCluster(clusters, highest);
    return clusters;
}

/// The cluster whose form as colour A is nearest, the first of equals.
Cluster& nearestCluster(Clusters& clusters, std::uint32_t colour) {
    std::size_t nearest = 0;
    std::uint32_t least = squaredDistance(colour, clusters.list[0].stored.a);
    for (std::size_t i = 1; i < clusters.count; ++i) {
        const std::uint32_t distance = squaredDistance(colour, clusters.list[i].stored.a);
        if (distance < least) {
            least = distance;
            nearest = i;
        }
    }
    return clusters.list[nearest];
}

struct FarthestPixel {
    std::uint32_t colour, distance;
};

/// Gives each pixel to a cluster. Returns the pixel farthest from its cluster's centre, the last of equals.
FarthestPixel assignPixels(Clusters& clusters, const DiscColours& colours) {
    for (Cluster& cluster : clusters.list) {
        cluster.count = 0;
        cluster.sums = {};
    }
    FarthestPixel farthest{};
    for (const std::uint32_t colour : colours) {
        Cluster& cluster = nearestCluster(clusters, colour);
        ++cluster.count;
        for (std::size_t channel = 0; channel < channelCount; ++channel)
            cluster.sums[channel] += channelOf(colour, channel);
        // Kept: the cluster is the nearest by its stored colour A, and the distance is that from its mean, which another
        // cluster's may be nearer than; encoded files depend on it.
        const std::uint32_t distance = squaredDistance(colour, cluster.centre);
        if (distance >= farthest.distance) farthest = {colour, distance};
    }
    return farthest;
}

/// Moves the centres to the rounded means of their pixels; a cluster without pixels stays.
void updateCentres(Clusters& clusters) {
    for (std::size_t i = 0; i < clusters.count; ++i) {
        Cluster& cluster = clusters.list[i];
        if (cluster.count == 0) continue;
        std::uint32_t centre = 0;
        for (std::size_t channel = 0; channel < channelCount; ++channel)
            centre |= (cluster.sums[channel] + cluster.count / 2) / cluster.count << 8 * channel;
        setCentre(cluster, centre);
    }
}

/// Most pixels first; of equals, the one that came first.
void sortByCount(Clusters& clusters) {
    const auto holdsMore = [](const Cluster& first, const Cluster& second) { return first.count > second.count; };
    for (std::size_t i = 1; i < clusters.count; ++i) {
        for (std::size_t k = i; k > 0 && holdsMore(clusters.list[k], clusters.list[k - 1]); --k)
            std::swap(clusters.list[k], clusters.list[k - 1]);
    }
}

/// Adaptive k-means: every second step adds a cluster while a pixel lies far from its own.
Clusters findClusters(const DiscColours& colours, const ColourVector& axis) {
    Clusters clusters = seedClusters(colours, axis);
    for (int remaining = steps - 1;; --remaining) {
        const FarthestPixel farthest = assignPixels(clusters, colours);
        const bool isLast = remaining == 0 || farthest.distance <= closeEnough;
        if (isLast) sortByCount(clusters);
        updateCentres(clusters);
        if (isLast) return clusters;
        if (remaining % 2 == 0 && clusters.count < mostClusters) addCluster(clusters, farthest.colour);
    }
}

}  // namespace

void ClusterStart(const ColourVector& axis, const Footprint& footprint, RepStart& start) {
    DiscColours colours;
    for (std::size_t i = 0; i < discPixels; ++i)
        colours[i] = footprint[discPositions[i]];
    const Clusters clusters = findClusters(colours, axis);

    // The pairs of large clusters come first.
    std::size_t count = 0;
    for (std::size_t sum = 1; sum <= 2 * clusters.count; ++sum) {
        for (std::size_t i = 0; 2 * i < sum && count < mostCandidates; ++i) {
            if (sum - i >= clusters.count) continue;
            start.candidates[count++] = {clusters.list[i].stored.a, clusters.list[sum - i].stored.b};
        }
    }
    // Kept: the exchange does not requantise the colours for their new places, where the block stores the bits that fit;
    // encoded files depend on it.
    for (std::size_t i = 0, found = count; i < found && count < mostCandidates; ++i)
        start.candidates[count++] = {start.candidates[i].colourB, start.candidates[i].colourA};
    start.count = static_cast<std::uint8_t>(count);
    start.isFlatStart = 0;
}

}  // namespace moktexture::amtc
