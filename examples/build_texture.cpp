// Builds a MIP-mapped DXT5 texture from pixels and saves it in the native layout.
//   build_texture OUT.mok

#include <MOKTexLib.h>

#include <cstdio>

int main(int argc, char** argv) {
    using namespace moktexture;
    if (argc != 2) return 1;
    const CMOKTextureHeader header(PixelTypeRGBA8.id, 256, 256, 1, 1, 1, 1, eColourSpaceLinear, eVarUByteNorm, false);
    CMOKTexture texture(header, nullptr);  // 256 by 256 pixels, zeroed
    auto* pixels = static_cast<unsigned char*>(texture.getDataPtr(0, 0, 0));
    for (unsigned int i = 0; i < texture.getDataSize(); ++i)
        pixels[i] = static_cast<unsigned char>(i * i >> 12);

    const bool saved = GenerateMIPMaps(texture, eResizeLinear) &&
                       Transcode(texture, eFmtDXT5, eVarUByteNorm, eColourSpaceLinear) && texture.saveFile(argv[1]);
    std::printf("%s: %u levels, %u bytes\n", argv[1], texture.getNumMIPLevels(), texture.getDataSize());
    return saved ? 0 : 2;
}
