// Representatives: from weighted pixels to principal axes.
//
// Problem   The colours that a block can show lie near a line in RGBA space, the line from its colour A to its colour B. The
//           encoder therefore needs the direction along which the pixels of a footprint spread most, and the range that they
//           cover.
// Idea      Principal component analysis. The covariance of the pixels is E[c c'] - E[c] E[c]', where the moments E[c c'] and the
//           mean E[c] come from one pass over the pixels. Its eigenvectors, sorted by eigenvalue, are the axes; a second pass
//           over the pixels projects them on the axes to find the extent along each.
//
// The eigenvectors of the 4 by 4 covariance come from the cyclic Jacobi method in its threshold form, in single precision:
//
//     threshold = mean magnitude of the elements off the diagonal
//     until the threshold is at most 2^-23 of its start:
//         for each element a[p][q] above the diagonal:
//             if its magnitude is at least the threshold: rotate rows and columns p and q so that it becomes 0
//         if the largest magnitude met was 0: stop, the matrix is diagonal
//         threshold /= 16, and again while it is above that largest magnitude
//     sort by eigenvalue, descending
//
// It ends because every round divides the threshold by 16 at least, which passes 2^-23 of the start after six rounds. A round
// visits 6 elements, so that a covariance costs at most 36 rotations of some 50 floating-point operations each. A power iteration
// would find the first axis alone; the search needs all four, because solved colours are clamped to the box along them, and equal
// eigenvalues are no special case for Jacobi.

#include "moktc/amtc/analysis/representative.h"

#include <cmath>
#include <utility>

namespace moktexture::amtc {

namespace {

/// Where the threshold stops, as a fraction of its start: 2^-23, the relative step of single precision. A larger fraction would
/// save rounds and leave the axes less exact; a smaller one would rotate rounding noise.
constexpr float stoppingFraction = 1.1920929e-7f;
/// A slower decay rotates large elements first more strictly and takes more rounds; a faster one rotates small elements that
/// later rotations fill again. The axes depend on it in their last bits, and encoded bytes through them.
constexpr float thresholdDecay = 0.0625f;

/// Rotates the point (x, y) by the angle with cosine `c` and sine `s`.
void rotatePoint(float& x, float& y, float c, float s) {
    const float oldX = x, oldY = y;
    x = c * oldX - s * oldY;
    y = s * oldX + c * oldY;
}

/// The tangent of the smaller angle whose rotation makes `element`, which is not 0, vanish. `difference` is that of the two
/// diagonal elements, a[q][q] - a[p][p].
float rotationTangent(float difference, float element) {
    if (std::abs(difference) + std::abs(100 * element) == std::abs(difference)) return element / difference;
    const float theta = 0.5f * difference / element;
    const float tangent = 1 / (std::abs(theta) + std::sqrt(1 + theta * theta));
    return theta < 0 ? -tangent : tangent;
}

/// Rotates rows and columns `p` and `q` so that their common element vanishes; eigenvectors are rows.
void rotate(SquareMatrix& a, std::size_t n, std::size_t p, std::size_t q, SquareMatrix& eigenvectors) {
    const float element = a[p][q];
    const float tangent = rotationTangent(a[q][q] - a[p][p], element);
    const float c = 1 / std::sqrt(1 + tangent * tangent), s = tangent * c;
    a[p][p] -= tangent * element;
    a[q][q] += tangent * element;
    a[p][q] = a[q][p] = 0;
    for (std::size_t r = 0; r < n; ++r) {
        rotatePoint(eigenvectors[p][r], eigenvectors[q][r], c, s);
        if (r == p || r == q) continue;
        rotatePoint(a[r][p], a[r][q], c, s);
        a[p][r] = a[r][p];
        a[q][r] = a[r][q];
    }
}

/// Rotates every element whose magnitude is at least the threshold to 0. Returns the largest magnitude that was met.
float jacobiSweep(SquareMatrix& a, std::size_t n, float threshold, SquareMatrix& eigenvectors) {
    float largest = 0;
    for (std::size_t p = 0; p + 1 < n; ++p) {
        for (std::size_t q = p + 1; q < n; ++q) {
            const float magnitude = std::abs(a[p][q]);
            largest = std::max(largest, magnitude);
            if (magnitude >= threshold) rotate(a, n, p, q, eigenvectors);
        }
    }
    return largest;
}

/// The mean magnitude of the elements off the diagonal.
float startThreshold(const SquareMatrix& a, std::size_t n) {
    float sum = 0;
    for (std::size_t p = 0; p + 1 < n; ++p)
        for (std::size_t q = p + 1; q < n; ++q)
            sum += std::abs(a[p][q]);
    return n > 1 ? 2 * sum / static_cast<float>(n * (n - 1)) : 0;
}

void sortDescending(std::size_t n, ColourVector& eigenvalues, SquareMatrix& eigenvectors) {
    for (std::size_t i = 0; i + 1 < n; ++i) {
        std::size_t largest = i;
        for (std::size_t j = i + 1; j < n; ++j)
            if (eigenvalues[j] > eigenvalues[largest]) largest = j;
        std::swap(eigenvalues[i], eigenvalues[largest]);
        std::swap(eigenvectors[i], eigenvectors[largest]);
    }
}

SquareMatrix covarianceOf(const MomentMatrix& moments, const ColourSum& mean) {
    SquareMatrix covariance{};
    std::size_t entry = 0;
    for (std::size_t i = 0; i < channelCount; ++i) {
        for (std::size_t j = i; j < channelCount; ++j) {
            covariance[i][j] = static_cast<float>(moments[entry++] - mean[i] * mean[j]);
            covariance[j][i] = covariance[i][j];
        }
    }
    return covariance;
}

}  // namespace

void EigenSymmetric(const SquareMatrix& matrix, std::size_t n, ColourVector& eigenvalues, SquareMatrix& eigenvectors) {
    SquareMatrix a = matrix;
    eigenvectors = identityMatrix;
    float threshold = startThreshold(a, n);
    const float stoppingThreshold = threshold * stoppingFraction;
    while (threshold > stoppingThreshold) {
        const float largest = jacobiSweep(a, n, threshold, eigenvectors);
        if (largest == 0) break;
        threshold *= thresholdDecay;
        while (threshold > largest)
            threshold *= thresholdDecay;
    }
    for (std::size_t i = 0; i < n; ++i)
        eigenvalues[i] = a[i][i];
    sortDescending(n, eigenvalues, eigenvectors);
}

void ColourCloud::divideByWeight() {
    for (double& channel : sum)
        channel /= weight;
    for (double& moment : moments)
        moment /= weight;
}

void MakeRep(const ColourCloud& cloud, bool setMeanBytes, Rep& rep) {
    const ColourBounds& bounds = cloud.bounds;
    if (bounds.isFlat()) {
        rep.axes = identityMatrix;
        rep.projMin = rep.projMax = bounds.minimum;
    } else {
        ColourVector eigenvalues;
        EigenSymmetric(covarianceOf(cloud.moments, cloud.sum), channelCount, eigenvalues, rep.axes);
        const ColourBounds empty;
        rep.projMin = empty.minimum;
        rep.projMax = empty.maximum;
    }
    rep.isFlat = bounds.isFlat() ? 1 : 0;
    rep.minColour = bounds.minimum;
    rep.maxColour = bounds.maximum;
    if (!setMeanBytes) return;
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        rep.meanColour[channel] = static_cast<std::uint8_t>(roundToByte(static_cast<float>(cloud.sum[channel])));
}

}  // namespace moktexture::amtc
