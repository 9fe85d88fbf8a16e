#include "transcode/pixels/channel_name.h"

namespace moktexture {

EChannelName channelNameFromChar(std::uint8_t letter) {
    switch (letter) {
        case 'r':
            return eChannelRed;
        case 'g':
            return eChannelGreen;
        case 'b':
            return eChannelBlue;
        case 'a':
            return eChannelAlpha;
        case 'l':
            return eChannelLuminance;
        case 'i':
            return eChannelIntensity;
        case 'x':
            return eChannelUnspecified;
        default:
            return eChannelNone;
    }
}

}  // namespace moktexture
