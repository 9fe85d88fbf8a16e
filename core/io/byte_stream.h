#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <vector>

/// @file
/// The byte stream that all file readers and writers work on: a file form and a memory form. Files are borrowed, not owned.

namespace moktexture {

/// Bytes to read, of known length, with a position.
class ByteReader {
public:
    virtual ~ByteReader() = default;
    ByteReader(const ByteReader&) = delete;
    ByteReader& operator=(const ByteReader&) = delete;

    /// Reads up to `count` bytes and moves on by as many as it read. Fewer than `count` means the end, or a failure.
    std::size_t read(void* target, std::size_t count);
    /// Whether all `count` bytes could be read; those that exist are read in any case.
    bool readAll(void* target, std::size_t count) { return read(target, count) == count; }
    /// Moves to a position from the start; positions past the end become the end.
    void seek(std::uint64_t newPosition);

    std::uint64_t position() const { return current; }
    std::uint64_t remaining() const { return length - current; }
    /// Whether the source itself failed, other than by its end.
    bool failed() const { return hasFailed; }

protected:
    explicit ByteReader(std::uint64_t size) : length(size) {}
    /// Takes `count` bytes at position(), which all lie within the length, and returns how many came.
    virtual std::size_t fetch(void* target, std::size_t count) = 0;
    /// Readies fetch() for another position.
    virtual bool moveTo(std::uint64_t newPosition) = 0;
    void fail();

private:
    std::uint64_t length;
    std::uint64_t current = 0;
    bool hasFailed = false;
};

/// Reads a file from its start. A file whose length cannot be told has length 0 and failed().
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
    /// For an image that its owner vouches for.
    static constexpr std::size_t unknownSize = ~std::size_t{0};

    MemoryReader(const void* image, std::size_t size) : ByteReader(size), bytes(static_cast<const unsigned char*>(image)) {}

private:
    std::size_t fetch(void* target, std::size_t count) override;
    bool moveTo(std::uint64_t newPosition) override;

    const unsigned char* bytes;
};

/// A place to append bytes to.
class ByteWriter {
public:
    virtual ~ByteWriter() = default;
    ByteWriter() = default;
    ByteWriter(const ByteWriter&) = delete;
    ByteWriter& operator=(const ByteWriter&) = delete;

    /// Whether all `count` bytes were taken.
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

/// Closes a written file and tells whether everything reached it.
bool closeWritten(FileHandle& file);

}  // namespace moktexture
