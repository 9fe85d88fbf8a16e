#pragma once

#include "moktc/amtc/records/colour_vector.h"

namespace moktexture::amtc {

/// Row by row.
using SquareMatrix = std::array<ColourVector, channelCount>;

/// Eigenvalues, descending, and unit eigenvectors, one a row in the same order, of the symmetric matrix in the first `n` (1 to 4)
/// rows and columns. Of the rest of the results nothing is said.
void EigenSymmetric(const SquareMatrix& matrix, std::size_t n, ColourVector& eigenvalues, SquareMatrix& eigenvectors);

}  // namespace moktexture::amtc
