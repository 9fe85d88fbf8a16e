#include "moktex/operations/image_operation.h"

namespace moktextool {

namespace {

// clang-format off
constexpr OperationOption options[] = {
    // names                    operand          help, example, parser
    {"-m,--mipmaps,--mips",     "[=N]",
     "Make MIP levels: N in all, or the full chain without N",
     "moktex convert brick.png brick.mok --mips", parseMipmaps},
    {"--premultiply",           nullptr,
     "Multiply the colours by alpha (8 bits a channel)",
     "moktex convert glow.png glow.mok --premultiply", parsePremultiply},
    {"--bleed",                 nullptr,
     "Give fully transparent pixels the colours of their neighbours",
     "moktex convert leaf.png leaf.mok --bleed --mips -f dxt5", parseBleed},
    {"--flip",                  "x|y|z",
     "Mirror left to right (x), top to bottom (y) or front to back (z)",
     "moktex convert photo.png photo.mok --flip y", parseFlip},
    {"--rotate90",              "z|-z",
     "Rotate by 90 degrees: clockwise (z) or counter-clockwise (-z)",
     "moktex convert photo.png photo.mok --rotate90 -z", parseRotate90},
    {"--border",                "N|NxN",
     "Add a border of N pixels, or of NxN (left and right, top and bottom), mirrored at the edge; drops the MIP levels",
     "moktex convert tile.png tile.mok --border 4", parseBorder},
    {"--normal-map",            "SCALE[:ORDER]",
     "Make a normal map of the red channel as heights. ORDER lists what red to alpha hold: x, y, z of the normal or h, the height (xyz)",
     "moktex convert height.png normals.mok --normal-map 2:xyzh", parseNormalMap},
    {"--set-channel",           "C=VALUE",
     "Set r, g, b or a of all pixels: 0 to 255 up to 8 bits a channel, to 65535 up to 16 bits, else 0 to 1 or any float",
     "moktex convert photo.png photo.mok --set-channel a=255", parseSetChannel},
    {"--swizzle",               "CCCC",
     "Choose the source channels of red, green, blue and alpha",
     "moktex convert photo.png photo.mok --swizzle bgra", parseSwizzle},
    {"--colour-mips",           nullptr,
     "Tint each MIP level below the first with a colour of its own",
     "moktex convert brick.png test.mok --mips --colour-mips", parseColourMips},
};
// clang-format on

}  // namespace

std::span<const OperationOption> operationOptions() {
    return options;
}

std::string longName(const OperationOption& option) {
    const std::string names = option.names;
    const std::size_t start = names.find("--");
    return names.substr(start, names.find(',', start) - start);
}

std::string operationHelp() {
    std::string text;
    for (const OperationOption& option : options) {
        const std::string operand = option.operand == nullptr ? "" : option.operand;
        std::string names = option.names;
        for (std::size_t comma = names.find(','); comma != std::string::npos; comma = names.find(',', comma + 2))
            names.insert(comma + 1, " ");
        text += "  " + names + (operand.empty() || operand[0] == '[' ? "" : " ") + operand + "\n    " +
                wrappedText(option.help, 4) + "\n    " + option.example + '\n';
    }
    return text;
}

std::uint32_t parseEdge(const std::string& text) {
    const bool isNumber = !text.empty() && text.size() <= 5 && text.find_first_not_of("0123456789") == std::string::npos;
    const unsigned long edge = isNumber ? std::stoul(text) : 0;
    return edge <= 65536 ? static_cast<std::uint32_t>(edge) : 0;
}

}  // namespace moktextool
