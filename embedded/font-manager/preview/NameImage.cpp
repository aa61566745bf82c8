#include "preview/NameImage.h"

#include <png.h>

namespace pellwick {

std::string EncodePng(const NameImage& image) {
    if (image.width == 0)
        return {};
    png_image file{};
    file.version = PNG_IMAGE_VERSION;
    file.width = static_cast<png_uint_32>(image.width);
    file.height = static_cast<png_uint_32>(image.height);
    file.format = PNG_FORMAT_GA;
    std::vector<uint8_t> pixels;
    for (const uint8_t coverage : image.coverage) {
        pixels.push_back(0);
        pixels.push_back(coverage);
    }
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(file);
    std::string png(size, '\0');
    if (png_image_write_to_memory(&file, png.data(), &size, 0, pixels.data(), 0, nullptr) == 0)
        return {};
    png.resize(size);
    return png;
}

}  // namespace pellwick
