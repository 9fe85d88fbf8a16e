#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "MOKTexLib.h"

namespace moktextool {

/// The numbers of a texture's format in graphics APIs: an object with `openGL`, `openGLES`, `direct3D9` and `dxgi`, each null
/// where the API has none. Those of OpenGL are objects of `internalFormat`, `format` and `type`.
nlohmann::ordered_json describeAPINumbers(const moktexture::CMOKTextureHeader& header);

/// @name These numbers as text in their usual notation; "-" for null.
/// @{
std::string openGLText(const nlohmann::ordered_json& numbers);
std::string direct3D9Text(const nlohmann::ordered_json& number);
std::string dxgiText(const nlohmann::ordered_json& number);
/// @}

}  // namespace moktextool
