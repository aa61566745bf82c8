// Documents of no sense, put together from the pieces that the search for font names goes by.
#pragma once

#include <cstddef>
#include <random>
#include <string>

struct RandomDocument {
    std::string extension;  ///< without the dot
    std::string content;
    size_t chunkSize;   ///< in bytes, from 64 up
    size_t windowSize;  ///< in bytes
};

RandomDocument MakeRandomDocument(std::mt19937_64& random);
