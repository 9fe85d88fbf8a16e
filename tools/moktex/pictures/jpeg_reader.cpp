#include "moktex/pictures/jpeg_reader.h"

#include "moktex/pictures/jpeg_segments.h"
#include "moktex/pictures/stb_pictures.h"

namespace moktextool {

DecodedPicture decodeJPEG(std::span<const unsigned char> bytes, const std::string& file) {
    const JPEGSegments segments = readJPEGSegments(bytes, false);
#ifdef MOKTEX_HAS_LIBJPEG
    DecodedPicture picture = decodeJPEGByLibjpeg(bytes, file);
#else
    DecodedPicture picture = decodeJPEGByStb(bytes, file);
#endif
    if (segments.profile) picture.warnings.push_back(profileWarning(*segments.profile));
    turnUpright(picture, segments.orientation);
    return picture;
}

const char* nameOfJPEGLibrary() {
#ifdef MOKTEX_HAS_LIBJPEG
    return "libjpeg-turbo";
#else
    return "stb";
#endif
}

DecodedPicture decodeJPEGByStb(std::span<const unsigned char> bytes, const std::string& file) {
    const JPEGSegments segments = readJPEGSegments(bytes, true);
    if (!segments.problem.empty()) throw brokenPicture(file, segments.problem);
    if (segments.pixels > mostJPEGPixelsPerByte * bytes.size()) throw brokenPicture(file, "it ends early");
    return decodeByStb(segments.decoding, file);
}

}  // namespace moktextool
