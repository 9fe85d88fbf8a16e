// CMOKTexture and files: the constructors that load, and the savers. Here is told which extension and which first word mean which
// layout.
#include <string>

#include "CMOKTexture.h"
#include "core/io/byte_stream.h"
#include "core/io/native_file.h"
#include "core/texture/TextureInternals.h"
#include "formats/c_source/c_source_file.h"
#include "formats/dds/dds_file.h"
#include "formats/ktx/ktx_file.h"
#include "formats/legacy/legacy_file.h"
#include "formats/mok_file.h"
#include "formats/texture_path.h"

namespace moktexture {

CMOKTexture::CMOKTexture(const char* filePath) : CMOKTexture() {
    if (filePath == nullptr) return;
    const FileHandle file(std::fopen(filePath, "rb"));
    if (file == nullptr) return;
    switch (fileLayoutForLoading(filePath)) {
        case FileLayout::ktx:
            privateLoadKTXFile(file.get());
            break;
        case FileLayout::dds:
            privateLoadDDSFile(file.get());
            break;
        default:
            privateLoadMOKFile(file.get());
    }
    // A load that failed leaves the size of what its header tells of.
    dataSize = getDataSize();
}

CMOKTexture::CMOKTexture(const void* memoryImage) : CMOKTexture() {
    if (memoryImage == nullptr) return;
    MemoryReader source(memoryImage, MemoryReader::unknownSize);
    readMOKFile(source, NativeReadRules::memoryConstructor(), nullptr, *this);
}

bool CMOKTexture::saveFile(const CMOKTString& filePath) const {
    std::string path(filePath.c_str());
    FileLayout layout = fileLayoutForSaving(path);
    if (layout == FileLayout::other) {
        // Kept: an unknown extension is no failure; callers rely on finding `picture.png.mok`.
        path += ".mok";
        layout = FileLayout::native;
    }
    // Kept: the file is made, or emptied, before the texture is looked at: a save that is refused leaves an empty file.
    FileHandle file(std::fopen(path.c_str(), "wb"));
    if (file == nullptr) return false;
    bool saved = false;
    switch (layout) {
        case FileLayout::ktx:
            saved = privateSaveKTXFile(file.get());
            break;
        case FileLayout::dds:
            saved = privateSaveDDSFile(file.get());
            break;
        case FileLayout::cHeader:
            saved = privateSaveCHeaderFile(file.get(), arrayNameOf(path).c_str());
            break;
        default:
            saved = privateSaveMOKFile(file.get());
    }
    const bool isComplete = closeWritten(file);
    // A failure to write C source goes unnoticed to the end.
    return saved && (isComplete || layout == FileLayout::cHeader);
}

bool CMOKTexture::saveFileLegacyMOK(const CMOKTString& filePath, ELegacyApi api) const {
    FileHandle file(std::fopen(filePath.c_str(), "wb"));
    if (file == nullptr) return false;
    const bool saved = privateSaveLegacyMOKFile(file.get(), api);
    return closeWritten(file) && saved;
}

bool CMOKTexture::privateLoadMOKFile(std::FILE* file) {
    if (file == nullptr) return false;
    FileReader source(file);
    return readMOKFile(source, NativeReadRules::fileConstructor(), nullptr, *this) == eLoadOk;
}

bool CMOKTexture::privateLoadKTXFile(std::FILE* file) {
    if (file == nullptr) return false;
    FileReader source(file);
    return readKTXFile(source, nullptr, *this) == eLoadOk;
}

bool CMOKTexture::privateLoadDDSFile(std::FILE* file) {
    if (file == nullptr) return false;
    FileReader source(file);
    return readDDSFile(source, nullptr, *this) == eLoadOk;
}

bool CMOKTexture::privateSaveMOKFile(std::FILE* file) const {
    if (file == nullptr) return false;
    FileWriter target(file);
    return writeNativeFile(*this, target);
}

bool CMOKTexture::privateSaveKTXFile(std::FILE* file) const {
    if (file == nullptr) return false;
    FileWriter target(file);
    return writeKTXFile(*this, target);
}

bool CMOKTexture::privateSaveDDSFile(std::FILE* file) const {
    if (file == nullptr) return false;
    FileWriter target(file);
    return writeDDSFile(*this, target);
}

bool CMOKTexture::privateSaveLegacyMOKFile(std::FILE* file, ELegacyApi api) const {
    if (file == nullptr) return false;
    FileWriter target(file);
    return writeLegacyFile(*this, api, target);
}

bool CMOKTexture::privateSaveCHeaderFile(std::FILE* file, CMOKTString name) const {
    if (file == nullptr) return false;
    FileWriter target(file);
    return writeCSource(*this, name.c_str(), target);
}

}  // namespace moktexture
