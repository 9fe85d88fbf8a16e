// CMOKTexture and files: the constructors that load, and the members that save.
#include <string>

#include "CMOKTexture.h"
#include "core/io/byte_stream.h"
#include "formats/c_source/c_source_file.h"
#include "formats/file_layout.h"
#include "formats/legacy/legacy_file.h"

namespace moktexture {
namespace {

bool loadFile(std::FILE* file, FileLayout layout, CMOKTexture& texture) {
    if (file == nullptr) return false;
    FileReader source(file);
    return readTextureFile(source, layout, ReadPolicy::lenient(ReadMode::lenientFile), texture) == eLoadOk;
}

bool saveToFile(std::FILE* file, FileLayout layout, const CMOKTexture& texture, const char* arrayName = "") {
    if (file == nullptr) return false;
    FileWriter target(file);
    return writeTextureFile(texture, layout, arrayName, target);
}

}  // namespace

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
    // A failed load leaves the size that its header describes.
    dataSize = getDataSize();
}

CMOKTexture::CMOKTexture(const void* memoryImage) : CMOKTexture() {
    if (memoryImage == nullptr) return;
    MemoryReader source(memoryImage, MemoryReader::unknownSize);
    readTextureFile(source, FileLayout::mok, ReadPolicy::lenient(ReadMode::lenientMemory), *this);
}

bool CMOKTexture::saveFile(const CMOKTString& filePath) const {
    std::string path(filePath.c_str());
    FileLayout layout = fileLayoutForSaving(path);
    if (layout == FileLayout::unknown) {
        // Kept (unknown-extension-gets-mok): an unknown extension is no failure; hosts that save `picture.png` load
        // `picture.png.mok` afterwards.
        path += ".mok";
        layout = FileLayout::mok;
    }
    // Kept (refused-save-empties-file): the file is created or emptied before the texture is validated, so that a refused save
    // leaves an empty file; hosts that save over an older file never load that older picture after a failure.
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
    // The exporter of C source reports no failed write, so neither does closing its file.
    return saved && (isComplete || layout == FileLayout::cHeader);
}

bool CMOKTexture::saveFileLegacyMOK(const CMOKTString& filePath, ELegacyApi api) const {
    FileHandle file(std::fopen(filePath.c_str(), "wb"));
    if (file == nullptr) return false;
    const bool saved = privateSaveLegacyMOKFile(file.get(), api);
    return closeWritten(file) && saved;
}

bool CMOKTexture::privateLoadMOKFile(std::FILE* file) {
    return loadFile(file, FileLayout::mok, *this);
}

bool CMOKTexture::privateLoadKTXFile(std::FILE* file) {
    return loadFile(file, FileLayout::ktx, *this);
}

bool CMOKTexture::privateLoadDDSFile(std::FILE* file) {
    return loadFile(file, FileLayout::dds, *this);
}

bool CMOKTexture::privateSaveMOKFile(std::FILE* file) const {
    return saveToFile(file, FileLayout::mok, *this);
}

bool CMOKTexture::privateSaveKTXFile(std::FILE* file) const {
    return saveToFile(file, FileLayout::ktx, *this);
}

bool CMOKTexture::privateSaveDDSFile(std::FILE* file) const {
    return saveToFile(file, FileLayout::dds, *this);
}

bool CMOKTexture::privateSaveCHeaderFile(std::FILE* file, CMOKTString name) const {
    return saveToFile(file, FileLayout::cHeader, *this, name.c_str());
}

bool CMOKTexture::privateSaveLegacyMOKFile(std::FILE* file, ELegacyApi api) const {
    if (file == nullptr) return false;
    FileWriter target(file);
    return writeLegacyFile(*this, api, target);
}

}  // namespace moktexture
