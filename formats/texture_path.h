#pragma once

#include <string>

namespace moktexture {

/// What the extension of a path says about the layout of its file.
enum class FileLayout { native, ktx, dds, cHeader, other };

/// The layout to read a path's file in: ".ktx" and ".dds" have their own, everything else is native.
/// The extension is what follows from the last '.', in either case of letters; a path without '.' is no extension.
FileLayout fileLayoutForLoading(const std::string& path);

/// The layout to write to a path: of "ktx", "dds", "h" and "mok", or `other`. The extension is what follows the last '.', in
/// either case of letters; a path without '.' is an extension as a whole.
FileLayout fileLayoutForSaving(const std::string& path);

}  // namespace moktexture
