/* CoreFoundation subset: universally unique identifiers (RFC 4122). See CFBase.h for ownership, errors and
 * threads. */
#ifndef COREFOUNDATION_CFUUID_H
#define COREFOUNDATION_CFUUID_H

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

typedef const struct CFUUID* CFUUIDRef;

/* In the order of the text form. */
typedef struct CFUUIDBytes {
    UInt8 byte0, byte1, byte2, byte3, byte4, byte5, byte6, byte7;
    UInt8 byte8, byte9, byte10, byte11, byte12, byte13, byte14, byte15;
} CFUUIDBytes;

CF_EXPORT CFTypeID CFUUIDGetTypeID(void);

/* A new random identifier. The caller owns the result. */
CF_EXPORT CFUUIDRef CFUUIDCreate(CFAllocatorRef allocator);
CF_EXPORT CFUUIDRef CFUUIDCreateFromUUIDBytes(CFAllocatorRef allocator, CFUUIDBytes bytes);

/* Reads the form 8-4-4-4-12 of hexadecimal digits of either case; NULL for any other text. */
CF_EXPORT CFUUIDRef CFUUIDCreateFromString(CFAllocatorRef allocator, CFStringRef string);

/* Writes the same form in upper case. The caller owns the result. */
CF_EXPORT CFStringRef CFUUIDCreateString(CFAllocatorRef allocator, CFUUIDRef uuid);

CF_EXPORT CFUUIDBytes CFUUIDGetUUIDBytes(CFUUIDRef uuid);

CF_EXTERN_C_END

#endif
