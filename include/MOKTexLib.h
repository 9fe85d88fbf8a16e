#pragma once

/// @file
/// The whole interface of MOKTexLib.

#include "CMOKTArray.h"
#include "CMOKTMap.h"
#include "CMOKTString.h"
#include "CMOKTexture.h"
#include "CMOKTextureHeader.h"
#include "EMOKTError.h"
#include "MOKTextureHeaderV3.h"
#include "MetaDataBlock.h"
#include "PixelType.h"
#include "compressed_format_id.h"
#include "format_info.h"
#include "image_operations.h"
#include "moktex_export.h"
#include "texture_enums.h"
#include "texture_io.h"
#include "transcode.h"
