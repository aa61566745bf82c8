// Images of fonts' names.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace pellwick {

/// How much of each pixel is black, row by row from the top: 0 nothing, 255 all of it.
struct NameImage {
    int width = 0;  ///< pixels; 0 when nothing is shown
    int height = 0;
    std::vector<uint8_t> coverage;
};

/// The image as a PNG file (https://www.w3.org/TR/png/), black on nothing; empty for one of no width.
std::string EncodePng(const NameImage& image);

}  // namespace pellwick
