#include "plot/picture.h"

#include "failure.h"

#include <cairo.h>
#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string_view>

namespace esttform::app {

namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;
using Surface = std::unique_ptr<cairo_surface_t, void (*)(cairo_surface_t*)>;

struct Signature {
    std::string_view bytes;
    const char* kind;
};
constexpr Signature PNG_SIGNATURE{"\x89PNG\r\n\x1a\n", "PNG"};
constexpr Signature OTHER_SIGNATURES[] = {{"\xff\xd8\xff", "a JPEG"}, {"GIF8", "a GIF"}, {"BM", "a BMP"},
                                          {std::string_view("II*\0", 4), "a TIFF"}, {std::string_view("MM\0*", 4), "a TIFF"},
                                          {"RIFF", "a WebP"}, {"P5", "a PGM"}, {"P6", "a PPM"}};

bool beginsWith(std::string_view text, std::string_view start) noexcept
{
    return text.substr(0, start.size()) == start;
}

/// Refuses a file that does not begin as a PNG does, and rewinds it.
void checkSignature(std::FILE* file, const std::string& path)
{
    char head[8] = {};
    errno = 0;
    const std::size_t headSize = std::fread(head, 1, sizeof head, file);
    if (std::ferror(file) != 0)
        throw Failure(fmt::format("{}: cannot read: {}", path, std::strerror(errno)));
    const std::string_view start(head, headSize);
    if (headSize == 0)
        throw Failure(fmt::format("{}: empty, expected a PNG picture", path));
    for (const Signature& other : OTHER_SIGNATURES)
        if (beginsWith(start, other.bytes))
            throw Failure(fmt::format("{}: {} picture, expected PNG; convert it first", path, other.kind));
    if (start != PNG_SIGNATURE.bytes)
        throw Failure(fmt::format("{}: not a picture, expected PNG", path));
    std::rewind(file);
}

cairo_status_t takeFromFile(void* file, unsigned char* data, unsigned int size)
{
    return std::fread(data, 1, size, static_cast<std::FILE*>(file)) == size ? CAIRO_STATUS_SUCCESS : CAIRO_STATUS_READ_ERROR;
}

}  // namespace

Picture readPng(const std::string& path)
{
    const File file(std::fopen(path.c_str(), "rbe"), std::fclose);
    if (!file)
        throw Failure(fmt::format("{}: cannot open: {}", path, std::strerror(errno)));
    checkSignature(file.get(), path);
    const Surface source(cairo_image_surface_create_from_png_stream(takeFromFile, file.get()), cairo_surface_destroy);
    if (cairo_surface_status(source.get()) != CAIRO_STATUS_SUCCESS)
        throw Failure(fmt::format("{}: damaged PNG picture, or one that is too large ({})", path,
                                  cairo_status_to_string(cairo_surface_status(source.get()))));

    Picture picture{path, cairo_image_surface_get_width(source.get()), cairo_image_surface_get_height(source.get()), {}};
    const Surface opaque(cairo_image_surface_create(CAIRO_FORMAT_RGB24, picture.width, picture.height), cairo_surface_destroy);
    cairo_t* const cr = cairo_create(opaque.get());
    cairo_set_source_rgb(cr, 1.0, 1.0, 1.0);
    cairo_paint(cr);
    cairo_set_source_surface(cr, source.get(), 0.0, 0.0);
    cairo_paint(cr);
    const cairo_status_t status = cairo_status(cr);
    cairo_destroy(cr);
    if (status != CAIRO_STATUS_SUCCESS)
        throw Failure(fmt::format("{}: {}", path, cairo_status_to_string(status)), ExitCode::OurFault);

    cairo_surface_flush(opaque.get());
    const auto width = static_cast<std::size_t>(picture.width);
    picture.pixels.resize(width * static_cast<std::size_t>(picture.height));
    const auto stride = static_cast<std::size_t>(cairo_image_surface_get_stride(opaque.get()));
    const unsigned char* const rows = cairo_image_surface_get_data(opaque.get());
    for (std::size_t y = 0; y < static_cast<std::size_t>(picture.height); ++y)
        std::memcpy(picture.pixels.data() + y * width, rows + y * stride, width * sizeof(std::uint32_t));
    for (std::uint32_t& pixel : picture.pixels)
        pixel &= 0xffffffU;                              // the fourth byte is not defined
    return picture;
}

}  // namespace esttform::app
