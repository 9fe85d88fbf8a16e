#include "core/io/byte_stream.h"

#include <algorithm>
#include <cstring>

#if !defined(_WIN32)
#include <sys/types.h>
#endif

namespace moktexture {
namespace {

bool seekFile(std::FILE* file, std::int64_t offset, int origin) {
#if defined(_WIN32)
    return _fseeki64(file, offset, origin) == 0;
#else
    static_assert(sizeof(off_t) == 8, "files above 2 GiB need 64-bit offsets");
    return fseeko(file, offset, origin) == 0;
#endif
}

std::int64_t tellFile(std::FILE* file) {
#if defined(_WIN32)
    return _ftelli64(file);
#else
    return ftello(file);
#endif
}

/// Length of a file, or -1; the position is then the start.
std::int64_t lengthOf(std::FILE* file) {
    if (!seekFile(file, 0, SEEK_END)) return -1;
    const std::int64_t length = tellFile(file);
    return seekFile(file, 0, SEEK_SET) ? length : -1;
}

}  // namespace

std::size_t ByteReader::read(void* target, std::size_t count) {
    const std::size_t wanted = static_cast<std::size_t>(std::min<std::uint64_t>(count, remaining()));
    if (wanted == 0) return 0;
    const std::size_t got = fetch(target, wanted);
    if (got < wanted) hasFailed = true;
    current += got;
    return got;
}

void ByteReader::seek(std::uint64_t newPosition) {
    current = std::min(newPosition, length);
    if (!moveTo(current)) fail();
}

void ByteReader::fail() {
    hasFailed = true;
    length = current;
}

FileReader::FileReader(std::FILE* openFile)
    : ByteReader(static_cast<std::uint64_t>(std::max<std::int64_t>(lengthOf(openFile), 0))), file(openFile) {
    // A pipe or a device has no length, and a folder has length 0 until it is read.
    if (remaining() == 0 && (std::fgetc(file) != EOF || std::ferror(file) != 0)) fail();
}

std::size_t FileReader::fetch(void* target, std::size_t count) {
    return std::fread(target, 1, count, file);
}

bool FileReader::moveTo(std::uint64_t newPosition) {
    return seekFile(file, static_cast<std::int64_t>(newPosition), SEEK_SET);
}

std::size_t MemoryReader::fetch(void* target, std::size_t count) {
    std::memcpy(target, bytes + position(), count);
    return count;
}

bool MemoryReader::moveTo(std::uint64_t) {
    return true;
}

bool FileWriter::write(const void* source, std::size_t count) {
    return std::fwrite(source, 1, count, file) == count;
}

bool MemoryWriter::write(const void* source, std::size_t count) {
    const unsigned char* const first = static_cast<const unsigned char*>(source);
    bytes.insert(bytes.end(), first, first + count);
    return true;
}

bool closeWritten(FileHandle& file) {
    std::FILE* const written = file.release();
    const bool failed = std::ferror(written) != 0;
    return std::fclose(written) == 0 && !failed;
}

}  // namespace moktexture
