#pragma once

namespace moktexture {

/// `base` to the power of `exponent`, the same on every platform: it uses the four operations on doubles only and is rounded
/// once, with a relative error below 2^-49 before. `base` is above 0, infinite or NaN; `exponent` is above 0 and at most 4.
float fixedPower(float base, float exponent);

}  // namespace moktexture
