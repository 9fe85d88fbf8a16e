#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <vector>

/// @file
/// The byte streams that all file readers and writers use, each with a file form and a memory form. Files are borrowed, not
/// owned.
///
/// A reader has a known length, so that a size in a file can be compared with remaining() before memory is allocated
/// for it. A read past the end returns the bytes that exist; a read error also sets failed(). A writer appends.

namespace moktexture {

/// Source of bytes with a known length and a position.
class ByteReader {
public:
    virtual ~ByteReader() = default;
    ByteReader(const ByteReader&) = delete;
    ByteReader& operator=(const ByteReader&) = delete;

    /// Reads up to `count` bytes, advances by their number and returns it. Fewer than `count` means the end, or a failure.
    std::size_t read(void* target, std::size_t count);
    /// Whether all `count` bytes were read; those that exist are read in any case.
    bool readAll(void* target, std::size_t count) { return read(target, count) == count; }
    /// Moves to a position from the start, clamped to the end.
    void seek(std::uint64_t newPosition);

    std::uint64_t position() const { return current; }
    std::uint64_t remaining() const { return length - current; }
    /// Whether a read or seek failed for another reason than the end.
    bool failed() const { return hasFailed; }

protected:
    explicit ByteReader(std::uint64_t size) : length(size) {}
    /// Reads `count` bytes at position(), all within the length, and returns the number read.
    virtual std::size_t fetch(void* target, std::size_t count) = 0;
    /// Sets the position of the next fetch().
    virtual bool moveTo(std::uint64_t newPosition) = 0;
    void fail();

private:
    std::uint64_t length;
    std::uint64_t current = 0;
    bool hasFailed = false;
};

/// Reads a file from its start. A file without a known length, such as a pipe, has length 0 and failed().
class FileReader final : public ByteReader {
public:
    explicit FileReader(std::FILE* file);

private:
    std::size_t fetch(void* target, std::size_t count) override;
    bool moveTo(std::uint64_t newPosition) override;

    std::FILE* file;
};

/// Reads from memory that outlives the reader, and never beyond its size.
class MemoryReader final : public ByteReader {
public:
    /// For an image whose size is not known: its reads are not bounded.
    static constexpr std::size_t unknownSize = ~std::size_t{0};

    MemoryReader(const void* image, std::size_t size) : ByteReader(size), bytes(static_cast<const unsigned char*>(image)) {}

private:
    std::size_t fetch(void* target, std::size_t count) override;
    bool moveTo(std::uint64_t newPosition) override;

    const unsigned char* bytes;
};

/// Target to append bytes to.
class ByteWriter {
public:
    virtual ~ByteWriter() = default;
    ByteWriter() = default;
    ByteWriter(const ByteWriter&) = delete;
    ByteWriter& operator=(const ByteWriter&) = delete;

    /// Appends `count` bytes; false if not all of them were written.
    virtual bool write(const void* source, std::size_t count) = 0;
};

class FileWriter final : public ByteWriter {
public:
    explicit FileWriter(std::FILE* target) : file(target) {}
    bool write(const void* source, std::size_t count) override;

private:
    std::FILE* file;
};

/// Raises `std::bad_alloc` as the vector grows.
class MemoryWriter final : public ByteWriter {
public:
    explicit MemoryWriter(std::vector<unsigned char>& target) : bytes(target) {}
    bool write(const void* source, std::size_t count) override;

private:
    std::vector<unsigned char>& bytes;
};

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

/// An open file that closes itself.
using FileHandle = std::unique_ptr<std::FILE, FileCloser>;

/// Closes a written file; false if any write to it failed.
bool closeWritten(FileHandle& file);

}  // namespace moktexture
