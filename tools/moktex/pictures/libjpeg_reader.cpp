// libjpeg reports errors through a function that must not return: it jumps back to the step that was under way. Nothing that a
// jump would leave undestroyed lives in the functions between.

#include <array>
#include <csetjmp>
#include <cstddef>
#include <cstdio>

// libjpeg needs <cstdio>, and its list of errors depends on how it is configured.
#include <jerror.h>
#include <jpeglib.h>

#include "moktex/pictures/jpeg_reader.h"
#include "moktex/pictures/jpeg_segments.h"

namespace moktextool {

namespace {

/// More scans than any encoder writes, each of which costs the time of the whole picture.
constexpr int mostScans = 500;

struct Decoder {
    jpeg_decompress_struct state;
    jpeg_error_mgr errors;
    jpeg_progress_mgr progress;
    std::jmp_buf failed;
    std::array<char, JMSG_LENGTH_MAX> reason;
};

Decoder& decoderOf(j_common_ptr state) {
    return *static_cast<Decoder*>(state->client_data);
}

[[noreturn]] void onError(j_common_ptr state) {
    Decoder& decoder = decoderOf(state);
    (*state->err->format_message)(state, decoder.reason.data());
    std::longjmp(decoder.failed, 1);
}

/// Warnings are errors here, because broken pixels are among them, but for those that leave the pixels alone. Traces are not
/// printed.
void onMessage(j_common_ptr state, int level) {
    const int code = state->err->msg_code;
    const bool isHarmless = code == JWRN_EXTRANEOUS_DATA || code == JWRN_ADOBE_XFORM || code == JWRN_JFIF_MAJOR;
    if (level < 0 && !isHarmless) onError(state);
}

void onProgress(j_common_ptr state) {
    Decoder& decoder = decoderOf(state);
    if (decoder.state.input_scan_number <= mostScans) return;
    std::snprintf(decoder.reason.data(), decoder.reason.size(), "more than %d scans", mostScans);
    std::longjmp(decoder.failed, 1);
}

/// @name Steps of decoding; false, with a reason, if one failed.
/// @{
bool readHeader(Decoder& decoder, const unsigned char* bytes, std::size_t size) {
    decoder.state.err = jpeg_std_error(&decoder.errors);
    decoder.errors.error_exit = onError;
    decoder.errors.emit_message = onMessage;
    decoder.state.client_data = &decoder;
    if (setjmp(decoder.failed) != 0) return false;
    jpeg_create_decompress(&decoder.state);
    decoder.progress.progress_monitor = onProgress;
    decoder.state.progress = &decoder.progress;
    jpeg_mem_src(&decoder.state, bytes, static_cast<unsigned long>(size));
    jpeg_read_header(&decoder.state, TRUE);
    const bool isPrinting = decoder.state.jpeg_color_space == JCS_CMYK || decoder.state.jpeg_color_space == JCS_YCCK;
    decoder.state.out_color_space = isPrinting ? JCS_CMYK : JCS_EXT_RGBA;
    return true;
}

bool readPixels(Decoder& decoder, unsigned char* pixels) {
    if (setjmp(decoder.failed) != 0) return false;
    jpeg_start_decompress(&decoder.state);
    const std::size_t rowSize = std::size_t{decoder.state.output_width} * 4;
    while (decoder.state.output_scanline < decoder.state.output_height) {
        JSAMPROW row = pixels + decoder.state.output_scanline * rowSize;
        jpeg_read_scanlines(&decoder.state, &row, 1);
    }
    jpeg_finish_decompress(&decoder.state);
    return true;
}
/// @}

/// Turns cyan, magenta, yellow and black into red, green, blue and alpha, as paint on white paper.
/// @param isInverted  the file holds the light that is left, as Adobe's programs write it
void convertInks(DecodedPicture& picture, bool isInverted) {
    const std::size_t size = picture.rowSize() * picture.height;
    for (std::size_t i = 0; i < size; i += 4) {
        unsigned char* pixel = &picture.pixels[i];
        const unsigned int flip = isInverted ? 0 : 255, black = pixel[3] ^ flip;
        for (int channel = 0; channel < 3; ++channel)
            pixel[channel] = static_cast<unsigned char>(((pixel[channel] ^ flip) * black + 127) / 255);
        pixel[3] = 255;
    }
}

}  // namespace

DecodedPicture decodeJPEGByLibjpeg(std::span<const unsigned char> bytes, const std::string& file) {
    struct Release {
        Decoder decoder = {};
        ~Release() { jpeg_destroy_decompress(&decoder.state); }
    } owner;
    Decoder& decoder = owner.decoder;
    const auto fail = [&] {
        if (decoder.errors.msg_code == JERR_OUT_OF_MEMORY) throw std::bad_alloc();
        throw brokenPicture(file, decoder.reason.data());
    };
    if (!readHeader(decoder, bytes.data(), bytes.size())) fail();
    const std::uint32_t width = decoder.state.image_width, height = decoder.state.image_height;
    DecodedPicture picture = makePicture(width, height, rgba8Format, file);
    if (std::uint64_t{width} * height > mostJPEGPixelsPerByte * bytes.size()) throw brokenPicture(file, "it ends early");
    if (!readPixels(decoder, picture.pixels.get())) fail();
    if (decoder.state.out_color_space == JCS_CMYK) convertInks(picture, decoder.state.saw_Adobe_marker);
    return picture;
}

}  // namespace moktextool
