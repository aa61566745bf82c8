// The extractor with chunks and windows of any size, so that small documents are cut everywhere.
#pragma once

#include "GBinaryDocumentFontExtractor.h"

class SmallChunkExtractor : public GBinaryDocumentFontExtractor {
public:
    SmallChunkExtractor(const std::string& path, size_t chunkSize, size_t windowSize)
        : GBinaryDocumentFontExtractor(GFileSystemSpec(path)),
          mChunkSize(chunkSize),
          mWindowSize(windowSize) {}

protected:
    size_t ChunkSize() const override { return mChunkSize; }
    size_t WindowSize() const override { return mWindowSize; }

private:
    size_t mChunkSize;
    size_t mWindowSize;
};
