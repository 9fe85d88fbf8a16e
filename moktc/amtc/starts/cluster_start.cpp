// Cluster start: colours that represent the middle of a footprint, for the corner palette.
//
// Problem   Most pixels of a corner-palette block show one of the colours that four neighbouring blocks store, without
//           interpolation. Its block should hold two colours that are frequent nearby, which need not lie on one line.
// Idea      Adaptive k-means on the pixels of a disc around the centre: begin with two clusters, and add one where a pixel is
//           represented badly. Pairs of the largest clusters are the candidates.
//
//     clusters = the pixels lowest and highest on the axis
//     for remaining = 10 down to 0:
//         assign each pixel to the cluster with the nearest colour A; note the pixel farthest from the mean of its cluster
//         if remaining is 0, or the farthest distance is at most 36: sort by size, move the clusters to their means, stop
//         move the clusters to the means of their pixels
//         if remaining is even and there are fewer than 5 clusters: add one at the farthest pixel
//     candidates: clusters (0,1), (0,2), (0,3), (1,2), (0,4), (1,3), ... as A and B, up to four; then the same pairs with the
//     clusters exchanged, if there is space. Each cluster is quantised to the bits of the colour that it becomes.
//
// It ends after 11 steps at most. A step costs 37 pixels by at most 5 distances; nothing is allocated. Every second step adds no
// cluster, so that the clusters move to their pixels before the next one is added.

#include <algorithm>
#include <utility>

#include "moktc/amtc/starts/colour_quantiser.h"
#include "moktc/amtc/starts/start_candidates.h"

namespace moktexture::amtc {

namespace {

// The disc: its pixels, drawn row by row, are those nearest to the block. A larger one finds colours that the block shares with
// more neighbours, a smaller one those of the block itself.
//
//     . . . . . . . . .
//     . . . # # # . . .
//     . . # # # # # . .
//     . # # # # # # # .
//     . # # # # # # # .
//     . # # # # # # # .
//     . . # # # # # . .
//     . . . # # # . . .
//     . . . . . . . . .
constexpr std::size_t discWidth = 9;
constexpr std::array<std::size_t, 7> discSpans = {3, 5, 7, 7, 7, 5, 3};  ///< pixels in rows 1 to 7
constexpr std::size_t discPixels = 37;

/// Indices in the footprint of the pixels of the disc, in raster order.
constexpr std::array<std::uint8_t, discPixels> discIndices = [] {
    std::array<std::uint8_t, discPixels> indices{};
    std::size_t count = 0;
    for (std::size_t row = 0; row < discSpans.size(); ++row) {
        for (std::size_t i = 0; i < discSpans[row]; ++i)
            indices[count++] = static_cast<std::uint8_t>((row + 1) * discWidth + (discWidth - discSpans[row]) / 2 + i);
    }
    return indices;
}();
using DiscColours = std::array<std::uint32_t, discPixels>;

// More clusters and more steps represent rare colours better; time grows with both. The candidates use
// the four largest clusters at most; a fifth keeps rare colours out of their means. The bytes depend on these constants.
constexpr std::size_t maxClusters = 5;
constexpr int clusterSteps = 11;
/// Squared distance from its cluster's mean up to which a pixel counts as represented: 6 in one channel. A smaller value adds
/// clusters for noise, a larger one misses colours.
constexpr std::uint32_t errorThreshold = 36;

struct Cluster {
    std::uint32_t centre;
    ColourPair stored;  ///< the centre, quantised to the bits of colour A and to those of colour B
    std::uint32_t count;
    std::array<std::uint32_t, channelCount> sums;
};

struct Clusters {
    std::size_t count = 0;
    std::array<Cluster, maxClusters> list{};
};

/// From this alpha on a centre is opaque. A lower value gives nearly opaque clusters more colour bits, a higher one keeps their
/// alpha.
constexpr std::uint32_t lowestOpaqueCentre = 250;

/// The alpha of both stored forms.
std::uint32_t alphaOfCentre(std::uint32_t centre) {
    // Kept (cluster-b-alpha-even): B gets one of A's even values, though a block stores odd ones for a translucent B and will
    // decode to 17 more. The refinement starts from these pairs, so that odd values would change the bytes of translucent palette
    // blocks.
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

/// Two clusters, at the pixels that lie lowest and highest on the axis.
Clusters seedClusters(const DiscColours& colours, const ColourVector& axis) {
    std::uint32_t lowest = colours[0], highest = colours[0];
    float smallest = dotProduct(toVector(colours[0]), axis), greatest = smallest;
    for (const std::uint32_t colour : colours) {
        const float projection = dotProduct(toVector(colour), axis);
        if (projection < smallest) {
            smallest = projection;
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

/// The cluster whose stored colour A is nearest, the first of equals.
Cluster& nearestCluster(Clusters& clusters, std::uint32_t colour) {
    std::size_t nearest = 0;
    std::uint32_t smallest = squaredDistance(colour, clusters.list[0].stored.a);
    for (std::size_t i = 1; i < clusters.count; ++i) {
        const std::uint32_t distance = squaredDistance(colour, clusters.list[i].stored.a);
        if (distance < smallest) {
            smallest = distance;
            nearest = i;
        }
    }
    return clusters.list[nearest];
}

struct FarthestPixel {
    std::uint32_t colour, distance;
};

/// Assigns each pixel to a cluster. Returns the pixel farthest from the mean of its cluster, the last of equals.
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
        // Kept (cluster-distances-differ): the pixel is assigned by the stored colour A and its distance is that from the mean,
        // although another cluster's mean may be nearer. The choice of the next cluster depends on it, and with it the candidates
        // of every corner-palette block.
        const std::uint32_t distance = squaredDistance(colour, cluster.centre);
        if (distance >= farthest.distance) farthest = {colour, distance};
    }
    return farthest;
}

/// Moves the centres to the rounded means of their pixels; a cluster without pixels keeps its centre.
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

/// Largest first; equal ones keep their order.
void sortByCount(Clusters& clusters) {
    const auto holdsMore = [](const Cluster& first, const Cluster& second) { return first.count > second.count; };
    for (std::size_t i = 1; i < clusters.count; ++i) {
        for (std::size_t k = i; k > 0 && holdsMore(clusters.list[k], clusters.list[k - 1]); --k)
            std::swap(clusters.list[k], clusters.list[k - 1]);
    }
}

Clusters findClusters(const DiscColours& colours, const ColourVector& axis) {
    Clusters clusters = seedClusters(colours, axis);
    for (int remaining = clusterSteps - 1;; --remaining) {
        const FarthestPixel farthest = assignPixels(clusters, colours);
        const bool isLast = remaining == 0 || farthest.distance <= errorThreshold;
        if (isLast) sortByCount(clusters);
        updateCentres(clusters);
        if (isLast) return clusters;
        if (remaining % 2 == 0 && clusters.count < maxClusters) addCluster(clusters, farthest.colour);
    }
}

struct ClusterPair {
    std::size_t first, second;
};

struct ClusterPairs {
    std::size_t count = 0;
    std::array<ClusterPair, maxCandidates> list{};
};

/// Pairs of clusters by ascending sum of their indices, so that those of large clusters come first.
ClusterPairs pairsOfLargeClusters(std::size_t clusterCount) {
    ClusterPairs pairs;
    for (std::size_t sum = 1; sum <= 2 * clusterCount; ++sum) {
        for (std::size_t i = 0; 2 * i < sum && pairs.count < maxCandidates; ++i) {
            if (sum - i < clusterCount) pairs.list[pairs.count++] = {i, sum - i};
        }
    }
    return pairs;
}

}  // namespace

void ClusterStart(const ColourVector& axis, const Footprint& footprint, RepStart& start) {
    DiscColours colours;
    for (std::size_t i = 0; i < discPixels; ++i)
        colours[i] = footprint[discIndices[i]];
    const Clusters clusters = findClusters(colours, axis);

    const ClusterPairs pairs = pairsOfLargeClusters(clusters.count);
    std::size_t count = 0;
    const auto addCandidate = [&](std::size_t a, std::size_t b) {
        if (count < maxCandidates) start.candidates[count++] = {clusters.list[a].stored.a, clusters.list[b].stored.b};
    };
    for (std::size_t i = 0; i < pairs.count; ++i)
        addCandidate(pairs.list[i].first, pairs.list[i].second);
    for (std::size_t i = 0; i < pairs.count; ++i)
        addCandidate(pairs.list[i].second, pairs.list[i].first);
    start.count = static_cast<std::uint8_t>(count);
    start.isFlatStart = 0;
}

}  // namespace moktexture::amtc
