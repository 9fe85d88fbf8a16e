#include <MOKTexLib.h>

#include <vector>

// A grey 16 by 16 picture becomes DXT1 with all its MIP levels; exit status 0 if every step worked.
int main() {
    using namespace moktexture;
    const CMOKTextureHeader header(PixelTypeRGBA8.id, 16, 16, 1, 1, 1, 1, eColourSpaceLinear, eVarUByteNorm, false);
    const std::vector<unsigned char> grey(header.getDataSize(), 128);
    CMOKTexture texture(header, grey.data());
    const bool made = GenerateMIPMaps(texture, eResizeLinear) && texture.getNumMIPLevels() == 5 &&
                      Transcode(texture, eFmtDXT1, eVarUByteNorm, eColourSpaceLinear);
    std::vector<unsigned char> image;
    CMOKTexture loaded;
    return made && SaveTexture(texture, "mok", image) && LoadTexture(loaded, image.data(), image.size()) == eLoadOk ? 0 : 1;
}
