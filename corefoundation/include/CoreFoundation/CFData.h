/* CoreFoundation subset: byte buffers. See CFBase.h for ownership, errors and threads. */
#ifndef COREFOUNDATION_CFDATA_H
#define COREFOUNDATION_CFDATA_H

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

typedef const struct CFData* CFDataRef;

CF_EXPORT CFTypeID CFDataGetTypeID(void);

/* The bytes are copied. The caller owns the result. */
CF_EXPORT CFDataRef CFDataCreate(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length);

CF_EXPORT CFIndex CFDataGetLength(CFDataRef data);

/* Lent until data is freed. May be NULL when the length is 0. */
CF_EXPORT const UInt8* CFDataGetBytePtr(CFDataRef data);

CF_EXTERN_C_END

#endif
