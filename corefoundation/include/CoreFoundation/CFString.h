/* CoreFoundation subset: immutable Unicode text. See CFBase.h for ownership, errors and threads.
 * Lengths and positions count UTF-16 code units; a character beyond U+FFFF counts two.
 */
#ifndef COREFOUNDATION_CFSTRING_H
#define COREFOUNDATION_CFSTRING_H

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

typedef UInt32 CFStringEncoding;
enum {
    kCFStringEncodingISOLatin1 = 0x0201,
    kCFStringEncodingASCII = 0x0600,
    kCFStringEncodingUnicode = 0x0100,
    kCFStringEncodingUTF16 = 0x0100, /* the byte order of this machine, or that of a byte order mark */
    kCFStringEncodingUTF8 = 0x08000100,
    kCFStringEncodingUTF16BE = 0x10000100,
    kCFStringEncodingUTF16LE = 0x14000100
};

CF_EXPORT CFTypeID CFStringGetTypeID(void);

/* CFSTR("text"): a constant string from a UTF-8 literal, made once and never freed. Lent to the caller. */
#define CFSTR(literal) CFStringMakeConstantString("" literal "")
CF_EXPORT CFStringRef CFStringMakeConstantString(const char* utf8);

/* Each returns a new string that the caller owns, or NULL for bytes that are invalid in the encoding, for an
 * unpaired surrogate, and for an encoding that is not listed above. cString ends with a zero byte; it cannot
 * be UTF-16. isExternalRepresentation: a byte order mark in front is obeyed and left out. */
CF_EXPORT CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* cString,
                                                CFStringEncoding encoding);
CF_EXPORT CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const UInt8* bytes, CFIndex byteCount,
                                              CFStringEncoding encoding, Boolean isExternalRepresentation);

CF_EXPORT CFIndex CFStringGetLength(CFStringRef string);

/* Writes the whole text and a zero byte into buffer, which has room for bufferSize bytes. False when it does
 * not fit or the encoding cannot express it; buffer then holds an empty text if bufferSize is not 0. */
CF_EXPORT Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex bufferSize,
                                     CFStringEncoding encoding);

/* The number of bytes, without a zero byte, that length code units take at most; kCFNotFound when that is too
 * large. */
CF_EXPORT CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);

/* Converts range into at most bufferSize bytes, whole characters only, and returns the number of code units
 * that were converted. lossByte (0: stop there) replaces a character that the encoding cannot express. With a
 * NULL buffer the bytes are only counted. usedBytes may be NULL. isExternalRepresentation puts a byte order
 * mark in front of UTF-16 of no fixed byte order. */
CF_EXPORT CFIndex CFStringGetBytes(CFStringRef string, CFRange range, CFStringEncoding encoding,
                                   UInt8 lossByte, Boolean isExternalRepresentation, UInt8* buffer,
                                   CFIndex bufferSize, CFIndex* usedBytes);

CF_EXTERN_C_END

#endif
