/* CoreFoundation subset: byte buffers. See CFBase.h for ownership, errors and threads. */
#ifndef COREFOUNDATION_CFDATA_H
#define COREFOUNDATION_CFDATA_H

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

typedef const struct CFData* CFDataRef;
typedef struct CFData* CFMutableDataRef;

CF_EXPORT CFTypeID CFDataGetTypeID(void);

/* The bytes are copied. The caller owns the result. capacity, in bytes, is a hint and limits nothing. */
CF_EXPORT CFDataRef CFDataCreate(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length);
CF_EXPORT CFDataRef CFDataCreateCopy(CFAllocatorRef allocator, CFDataRef data);
CF_EXPORT CFMutableDataRef CFDataCreateMutable(CFAllocatorRef allocator, CFIndex capacity);
CF_EXPORT CFMutableDataRef CFDataCreateMutableCopy(CFAllocatorRef allocator, CFIndex capacity,
                                                   CFDataRef data);

CF_EXPORT CFIndex CFDataGetLength(CFDataRef data);

/* Lent until data changes or is freed. May be NULL when the length is 0. */
CF_EXPORT const UInt8* CFDataGetBytePtr(CFDataRef data);

/* Copies range into buffer, which has room for range.length bytes. */
CF_EXPORT void CFDataGetBytes(CFDataRef data, CFRange range, UInt8* buffer);

CF_EXPORT void CFDataAppendBytes(CFMutableDataRef data, const UInt8* bytes, CFIndex length);

CF_EXTERN_C_END

#endif
