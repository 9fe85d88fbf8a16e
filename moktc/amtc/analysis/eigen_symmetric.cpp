#include "moktc/amtc/analysis/eigen_symmetric.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace moktexture::amtc {

namespace {

constexpr float stoppingFraction = 1.1920929e-7f;
constexpr float thresholdDecay = 0.0625f;
constexpr SquareMatrix identity = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};

/// Turns the vectors (x, y) of two entries by the angle of cosine `c` and sine `s`.
void turn(float& x, float& y, float c, float s) {
    const float oldX = x, oldY = y;
    x = c * oldX - s * oldY;
    y = s * oldX + c * oldY;
}

/// Tangent of the smaller angle that brings `element` to zero, which is not zero; `difference` is that of the two diagonal ones.
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
        turn(eigenvectors[p][r], eigenvectors[q][r], c, s);
        if (r == p || r == q) continue;
        turn(a[r][p], a[r][q], c, s);
        a[p][r] = a[r][p];
        a[q][r] = a[r][q];
    }
}

/// Rotates every element of at least the threshold away and returns the largest magnitude that was met.
float sweep(SquareMatrix& a, std::size_t n, float threshold, SquareMatrix& eigenvectors) {
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

/// The mean magnitude of the elements off the diagonal, where the threshold starts.
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

}  // namespace

void EigenSymmetric(const SquareMatrix& matrix, std::size_t n, ColourVector& eigenvalues, SquareMatrix& eigenvectors) {
    SquareMatrix a = matrix;
    eigenvectors = identity;
    float threshold = startThreshold(a, n);
    const float stoppingLevel = threshold * stoppingFraction;
    while (threshold > stoppingLevel) {
        const float largest = sweep(a, n, threshold, eigenvectors);
        if (largest == 0) break;
        threshold *= thresholdDecay;
        while (threshold > largest)
            threshold *= thresholdDecay;
    }
    for (std::size_t i = 0; i < n; ++i)
        eigenvalues[i] = a[i][i];
    sortDescending(n, eigenvalues, eigenvectors);
}

}  // namespace moktexture::amtc
