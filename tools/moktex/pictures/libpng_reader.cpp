// libpng reports errors through a function that must not return: it jumps back to the step that was under way. Nothing that a
// jump would leave undestroyed lives in the functions between.

#include <png.h>

#include <algorithm>
#include <array>
#include <csetjmp>
#include <cstring>
#include <new>

#include "moktex/pictures/png_reader.h"

namespace moktextool {

namespace {

struct Decoder {
    png_structp state = nullptr;
    png_infop info = nullptr;
    const unsigned char* next = nullptr;
    const unsigned char* end = nullptr;
    bool isOutOfMemory = false;
    std::array<char, 128> reason{};
};

[[noreturn]] void onError(png_structp state, png_const_charp message) {
    auto& reason = static_cast<Decoder*>(png_get_error_ptr(state))->reason;
    std::strncpy(reason.data(), message, reason.size() - 1);
    png_longjmp(state, 1);
}

void onWarning(png_structp, png_const_charp) {}

void read(png_structp state, png_bytep target, std::size_t size) {
    auto& decoder = *static_cast<Decoder*>(png_get_io_ptr(state));
    if (size > static_cast<std::size_t>(decoder.end - decoder.next)) png_error(state, "it ends early");
    std::memcpy(target, decoder.next, size);
    decoder.next += size;
}

png_voidp allocate(png_structp state, png_alloc_size_t size) {
    void* memory = std::malloc(size);
    if (memory == nullptr) static_cast<Decoder*>(png_get_mem_ptr(state))->isOutOfMemory = true;
    return memory;
}

void release(png_structp, png_voidp memory) {
    std::free(memory);
}

/// @name Steps of decoding; false, with a reason, if one failed.
/// @{
bool readHeader(Decoder& decoder) {
    decoder.state = png_create_read_struct_2(PNG_LIBPNG_VER_STRING, &decoder, onError, onWarning, &decoder, allocate, release);
    if (decoder.state == nullptr) return decoder.isOutOfMemory = true, false;
    if (setjmp(png_jmpbuf(decoder.state)) != 0) return false;
    decoder.info = png_create_info_struct(decoder.state);
    if (decoder.info == nullptr) return decoder.isOutOfMemory = true, false;
    constexpr png_alloc_size_t largestChunk = 8u << 20;
    png_set_chunk_malloc_max(decoder.state, largestChunk);
    png_set_read_fn(decoder.state, &decoder, read);
    // All chunks but those of pixels, palette and transparency.
    png_set_keep_unknown_chunks(decoder.state, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
    png_read_info(decoder.state, decoder.info);
    return true;
}

bool readPixels(Decoder& decoder, unsigned char* pixels, std::size_t rowSize) {
    if (setjmp(png_jmpbuf(decoder.state)) != 0) return false;
    const png_uint_32 height = png_get_image_height(decoder.state, decoder.info);
    png_set_expand(decoder.state);
    png_set_gray_to_rgb(decoder.state);
    png_set_add_alpha(decoder.state, 0xFFFF, PNG_FILLER_AFTER);
    png_set_swap(decoder.state);  // of 16 bits: little-endian, as textures hold them
    const int passes = png_set_interlace_handling(decoder.state);
    png_read_update_info(decoder.state, decoder.info);
    if (png_get_rowbytes(decoder.state, decoder.info) != rowSize) png_error(decoder.state, "its header contradicts itself");
    for (int pass = 0; pass < passes; ++pass)
        for (png_uint_32 y = 0; y < height; ++y)
            png_read_row(decoder.state, pixels + y * rowSize, nullptr);
    png_read_end(decoder.state, nullptr);
    return true;
}
/// @}

}  // namespace

DecodedPicture decodePNGByLibpng(std::span<const unsigned char> bytes, const std::string& file) {
    struct Release {
        Decoder decoder;
        ~Release() { png_destroy_read_struct(&decoder.state, &decoder.info, nullptr); }
    } owner;
    Decoder& decoder = owner.decoder;
    decoder.next = bytes.data();
    decoder.end = bytes.data() + bytes.size();
    const auto fail = [&] {
        if (decoder.isOutOfMemory) throw std::bad_alloc();
        throw brokenPicture(file, decoder.reason.data());
    };
    if (!readHeader(decoder)) fail();
    const bool isDeep = png_get_bit_depth(decoder.state, decoder.info) == 16;
    DecodedPicture picture =
        makePicture(png_get_image_width(decoder.state, decoder.info), png_get_image_height(decoder.state, decoder.info),
                    isDeep ? rgba16Format : rgba8Format, file);
    if (!readPixels(decoder, picture.pixels.get(), picture.rowSize())) fail();
    return picture;
}

}  // namespace moktextool
