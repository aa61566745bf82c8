// Limits on reading one document.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/Worker.h"

namespace documents {

/// Bytes of a document. Larger ones exist, but few, and half of a reader's address space goes to the file.
inline constexpr uint64_t kMaxDocumentSize = uint64_t{1} << 30;

/// Bytes of one part of an archive once it is unpacked, and of all that are read: real ones have some
/// megabytes, and a kilobyte may unpack to a megabyte.
inline constexpr uint64_t kMaxUnpackedEntry = uint64_t{256} << 20;
inline constexpr uint64_t kMaxUnpackedTotal = uint64_t{512} << 20;
/// A book of many chapters has some thousand.
inline constexpr int64_t kMaxArchiveEntries = 100'000;

/// Elements within one another. Word processors nest tables and frames some dozen deep.
inline constexpr size_t kMaxXmlDepth = 256;

/// Objects of a PDF that are visited, each page's anew: a catalogue of 10,000 pages has as many
inline constexpr size_t kMaxPdfVisits = 10'000'000;

/// Fonts of one document; a catalogue of fonts has some thousand.
inline constexpr size_t kMaxFonts = 10'000;
/// Bytes of a name; fonts have names of a few dozen.
inline constexpr size_t kMaxNameSize = 512;
/// Places that are listed for one font; people read no more.
inline constexpr size_t kMaxPlaces = 20;

/// Files that one document places, and documents that are read along with one: a magazine's issue has some
/// hundred. Placed ones place others in turn, seldom more than one deep.
inline constexpr size_t kMaxPlaced = 1000;
inline constexpr int kMaxPlacedDepth = 3;

/// Of the process that reads. Its memory has room for the largest document and as much again; the largest
/// ones of every day take a second.
inline constexpr platform::WorkerLimits kDocumentWorkerLimits = {
    2 * kMaxDocumentSize, std::chrono::seconds(20), std::chrono::seconds(30), size_t{16} << 20};

}  // namespace documents
