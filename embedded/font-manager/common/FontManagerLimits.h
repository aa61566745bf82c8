// The font manager's limits, with the reason for each.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>

namespace pellwick {

/// A message larger than this is refused on either side: a page of a font list is below 1 MiB.
constexpr size_t kMaxMessageSize = size_t{16} << 20;
/// Values in a message, counted in all depths: a page of a font list has twenty thousand. A value takes one
/// byte in a message and up to two hundred in memory, so that no message makes more than about 100 MB.
constexpr size_t kMaxMessageValues = 500000;
/// What the agent sets aside, twice, for cleaning up when there is no more memory: to destroy its largest
/// answers takes less.
constexpr size_t kMemoryReserve = size_t{8} << 20;
/// Messages that are still taken when there is no memory for the reserve: what most commands ask for, and
/// little to clean up after.
constexpr size_t kMaxMessageWithoutReserve = size_t{16} << 10;
/// What a buffer for messages keeps when it is empty, and from what size on the memory that a message took is
/// given back to the system: such messages are rare.
constexpr size_t kMaxIdleBuffer = size_t{256} << 10;
/// Messages are flat: records in arrays in one object. Deeper ones would only serve to exhaust the stack.
constexpr int kMaxMessageDepth = 64;
/// What may wait for a client that does not read; one that lets more pile up is dropped.
constexpr size_t kMaxQueuedBytes = size_t{32} << 20;

/// How long a caller waits for a sign of life: a host must not hang because its font manager does.
constexpr std::chrono::milliseconds kAnswerLimit{2000};
/// How long a host waits for an answer, however many signs of life there are; also all that calls wait
/// together that follow one which waited in vain. A host's main thread is not to be kept for five seconds.
constexpr std::chrono::milliseconds kCallLimit{4400};
/// How long a host goes on with a request that was cut into parts, since a document has too many fonts for
/// one message: as long as one answer may take. And how many fonts a part has, and in how many bytes: an
/// answer may hold a font's record three times, each a thousand bytes.
constexpr std::chrono::milliseconds kPartsLimit{2000};
constexpr size_t kMaxFontsPerRequest = 2000;
constexpr size_t kMaxFontsSize = size_t{2} << 20;
/// A host that pauses for so long after an answer was doing something other than waiting for the next one.
constexpr std::chrono::milliseconds kHostPause{2};
/// How long what a host activated without learning of it stays, in case it asks for the same again.
constexpr std::chrono::milliseconds kUndoDelay{1000};
/// How long an agent that was waited for in vain is given to show that it is well again.
constexpr std::chrono::milliseconds kStalledLimit{200};
/// The agent gives a sign of life this often while a command takes longer.
constexpr std::chrono::milliseconds kKeepAliveInterval{400};
/// How long a stopping agent waits for its goodbyes to be taken.
constexpr std::chrono::milliseconds kGoodbyeLimit{500};
/// How long a starting agent waits for the one before it to be gone, or to answer: longer than a goodbye
/// takes, and less than the two seconds that plug-ins wait for an agent to be ready.
constexpr std::chrono::milliseconds kLockPatience{1900};
/// How often the agent looks whether it can still be found: so often that one which was started in vain,
/// because it could not, finds it within its patience.
constexpr std::chrono::milliseconds kGroundInterval{1500};
/// How long a process that leaves the work to an agent that runs already stays: whoever started it looks, and
/// is to find that it has not failed.
constexpr std::chrono::milliseconds kStandInTime{1000};
/// A host whose connection ends is about to end itself, or has only let go of the connection. So it is looked
/// at soon after, then ever less often.
constexpr std::chrono::milliseconds kFirstSweepDelay{20};
constexpr std::chrono::milliseconds kLongestSweepDelay{5000};
/// Between two looks at a client's process of which the system cannot tell whether it lives.
constexpr std::chrono::milliseconds kAdmissionPause{100};
/// Between two parts of the index of names, so that requests come in between.
constexpr std::chrono::milliseconds kIndexPause{10};
/// How long a listening client rests between its looks for an agent that is gone: soon at first, since it is
/// often being started again at this moment, then seldom.
constexpr std::chrono::milliseconds kFirstListenerRest{50};
constexpr std::chrono::milliseconds kLongestListenerRest{4000};
/// An agent that is back so soon after its goodbye was restarted, which is nothing to tell users of; until then
/// the client looks at least this often.
constexpr std::chrono::milliseconds kRestartTime{1500};
constexpr std::chrono::milliseconds kLongestRestDuringRestart{200};

/// One file of the vault is compared with its checksum this often, in turn and while nothing else is to be
/// done: a library of 10,000 files takes half a week, and a disk does not notice.
constexpr std::chrono::seconds kVaultCheckInterval{30};
/// How long a request to check files may take, and how many it checks; the client asks again for the rest.
constexpr std::chrono::milliseconds kVaultCheckTime{1000};
constexpr int kMaxFilesPerCheck = 1000;

/// The largest fonts in use, collections of Chinese, Japanese and Korean faces, have about 150 MB.
constexpr uint64_t kMaxFontFileSize = uint64_t{256} << 20;
/// Faces in one collection, and named instances in one face.
constexpr long kMaxFacesPerFile = 256;
constexpr unsigned kMaxInstancesPerFace = 512;
/// All of these in one file: the largest collections in use have some hundred. What a file lists beyond that
/// would only serve to fill the database, and to keep everybody waiting while it is written there: two
/// thousand take a tenth of a second.
constexpr size_t kMaxFontsPerFile = 512;
/// Bytes of names that are looked at in one file: real ones have some ten thousand, with licences in many
/// languages a few hundred thousand for each face.
constexpr size_t kMaxNameBytesPerFile = size_t{16} << 20;
/// Read for the fingerprints of a file's fonts: in a collection each may have the tables of all, and a hostile one has
/// them many times. A second's work.
constexpr uint64_t kMaxTableBytesPerFile = uint64_t{256} << 20;

/// Names that one face lists: real ones list a few hundred, a hostile table any number. And records of one
/// name that are tried until one can be decoded: each may be made to be costly and come to nothing.
constexpr unsigned kMaxNamesPerFace = 4096;
constexpr size_t kMaxNameCandidates = 8;
/// Names that one face is looked up by; a scan finds up to four.
constexpr size_t kMaxLookupNames = 8;
/// A name is a few dozen characters; longer ones are cut.
constexpr size_t kMaxNameSize = 1024;

/// Files with a licence that are collected beside fonts, their size, and the files that are looked at in a
/// folder for them: the texts of common licences have up to forty thousand bytes, fonts come with one or two,
/// and all of a system's fonts may stand in one folder.
constexpr size_t kMaxLicenceFiles = 8;
constexpr uint64_t kMaxLicenceFileSize = uint64_t{256} << 10;
constexpr int kMaxFilesInFolder = 20000;
/// The list of what was collected: a thousand fonts, each with the longest text of a licence.
constexpr uint64_t kMaxManifestSize = uint64_t{64} << 20;

/// The text of a font's licence: the longest that are common have five thousand bytes. Fonts per request for
/// them, so that the answer fits a message, and how long one request may take, so that hosts wait no longer.
constexpr size_t kMaxLicenceSize = size_t{16} << 10;
constexpr size_t kLicenceBatchSize = 64;
constexpr std::chrono::milliseconds kLicenceLimit{2500};

/// Images of fonts' names, in pixels at normal size.
constexpr int kPreviewHeight = 32;
constexpr int kMaxPreviewWidth = 640;
/// Fonts per request for them: a few tenths of a second's work.
constexpr size_t kPreviewBatchSize = 32;
/// No real glyph extends further than this many times its size; a larger one would only exhaust memory.
constexpr int kMaxGlyphExtent = 8;
/// Glyphs that one glyph is made of, at any depth. Real ones have up to a dozen; ten of ten, eight deep, are
/// as many as a hundred million.
constexpr int kMaxGlyphComponents = 256;
/// How long one request for images may take, so that those that wait for it get the rest another time.
constexpr std::chrono::milliseconds kPreviewLimit{3000};

/// What the process that reads fonts may use. Address space: the largest font, and several times what the
/// largest real ones need to be read. Processor time: reading real ones takes milliseconds, on slow machines
/// and for the largest some hundred; waiting for the processor may take many times as long.
constexpr uint64_t kWorkerMemory = uint64_t{768} << 20;
constexpr std::chrono::milliseconds kWorkerProcessorTime{2000};
constexpr std::chrono::milliseconds kWorkerTime{10000};
/// How long it stays after it was used last.
constexpr std::chrono::seconds kWorkerIdleTime{10};

/// How long the system may take to tell its fonts: after thousands of new ones it reads them first.
constexpr std::chrono::milliseconds kSystemFontsTime{120000};
/// The system's fonts are looked at when it has reported no change for so long: many change together.
constexpr std::chrono::milliseconds kFontChangePause{700};
/// New ones are read for so long before those that are read are recorded.
constexpr std::chrono::milliseconds kReadingTime{200};
/// How long a host waits while new fonts of the system are read, in place of being told that its document's
/// are missing.
constexpr std::chrono::milliseconds kSystemFontsPatience{3000};

/// Documents that a client remembers missing fonts of: more than anyone has open.
constexpr size_t kMaxDocumentsWithMissingFonts = 200;

/// How much of a document is searched for metadata, and how large these may be: a packet has a few thousand
/// bytes, with thumbnails some hundred thousand.
constexpr uint64_t kMaxXmpSearch = uint64_t{64} << 20;
constexpr size_t kMaxXmpPacket = size_t{4} << 20;

/// A log that has grown to this size is set aside, once, and begun anew.
constexpr uint64_t kMaxLogSize = uint64_t{5} << 20;

/// Fonts that are offered in place of one that is missing: more is no help in choosing. For so many missing
/// fonts of one request, since nobody chooses for more by hand, and the answer must fit a message.
constexpr size_t kMaxReplacements = 5;
constexpr size_t kMaxFontsWithReplacements = 1000;
/// Fonts that are compared with one that is missing, by each kind of name, and those of them that are looked
/// up until there are enough of which the file is there. Families have a few hundred members at most.
constexpr size_t kMaxNamesOfFamily = 1000;
constexpr size_t kMaxTriedReplacements = 50;

/// Fonts that answer to one name: far more than there are versions of any font, and few enough to be compared
/// for each name of a document. A collection can have more than a hundred thousand faces of one name.
constexpr int kMaxFontsOfName = 100;

/// Fonts per page of a list.
constexpr int kListPageSize = 1000;

}  // namespace pellwick
