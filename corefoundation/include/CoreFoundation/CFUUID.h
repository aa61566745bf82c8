/* CoreFoundation subset: universally unique identifiers (RFC 4122). See CFBase.h for ownership, errors and
 * threads. */
#ifndef COREFOUNDATION_CFUUID_H
#define COREFOUNDATION_CFUUID_H

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

typedef const struct CFUUID* CFUUIDRef;

CF_EXPORT CFTypeID CFUUIDGetTypeID(void);

/* A new random identifier. The caller owns the result. */
CF_EXPORT CFUUIDRef CFUUIDCreate(CFAllocatorRef allocator);

/* The form 8-4-4-4-12 of hexadecimal digits in upper case (RFC 4122). The caller owns the result. */
CF_EXPORT CFStringRef CFUUIDCreateString(CFAllocatorRef allocator, CFUUIDRef uuid);

CF_EXTERN_C_END

#endif
