/* CoreFoundation subset: basic types, ownership and what all objects share.
 *
 * Conventions of every header here:
 *  - Ownership: the caller owns what a function with Create or Copy in its name returns and gives it back
 * with CFRelease. What any other function returns (Get) is only lent; it lives as long as the object it came
 * from.
 *  - Allocators: pass NULL or kCFAllocatorDefault, which are the same; nothing else is supported.
 *  - Wrong use (NULL, an object of another type, an index out of range, a change to an immutable object)
 * asserts in debug builds; release builds change nothing and return 0, false or NULL.
 *  - A Create or Copy function returns NULL when memory runs out or the input is invalid. Nothing throws.
 *  - Threads: any function on any thread. Immutable objects may be shared between threads; a mutable object
 * may be used by one thread at a time. Reference counts are always atomic.
 */
#ifndef COREFOUNDATION_CFBASE_H
#define COREFOUNDATION_CFBASE_H

#include <stddef.h>
#include <stdint.h>

/* The build defines this where shared libraries mark their exports differently. */
#ifndef CF_EXPORT_ATTRIBUTE
#ifdef __GNUC__
#define CF_EXPORT_ATTRIBUTE __attribute__((visibility("default")))
#else
#define CF_EXPORT_ATTRIBUTE
#endif
#endif
#define CF_EXPORT extern CF_EXPORT_ATTRIBUTE

#ifdef __cplusplus
#define CF_EXTERN_C_BEGIN extern "C" {
#define CF_EXTERN_C_END }
#else
#define CF_EXTERN_C_BEGIN
#define CF_EXTERN_C_END
#endif

CF_EXTERN_C_BEGIN

typedef unsigned char Boolean;
typedef uint8_t UInt8;
typedef int8_t SInt8;
typedef uint16_t UInt16;
typedef int16_t SInt16;
typedef uint32_t UInt32;
typedef int32_t SInt32;
typedef uint64_t UInt64;
typedef int64_t SInt64;
typedef float Float32;
typedef double Float64;
typedef uint16_t UniChar; /* one UTF-16 code unit */

#ifndef TRUE
#define TRUE 1
#endif
#ifndef FALSE
#define FALSE 0
#endif

typedef ptrdiff_t CFIndex;
typedef size_t CFTypeID;
typedef size_t CFHashCode;
typedef size_t CFOptionFlags;

typedef const void* CFTypeRef; /* any object of this library */
typedef const struct CFAllocator* CFAllocatorRef;
typedef const struct CFNull* CFNullRef;
typedef const struct CFString* CFStringRef;

typedef struct CFRange {
    CFIndex location;
    CFIndex length;
} CFRange;

static inline CFRange CFRangeMake(CFIndex location, CFIndex length) {
    CFRange range;
    range.location = location;
    range.length = length;
    return range;
}

enum { kCFNotFound = -1 };

CF_EXPORT const CFAllocatorRef kCFAllocatorDefault; /* NULL */
CF_EXPORT const CFNullRef kCFNull; /* stands for "no value" inside collections; never freed */

CF_EXPORT CFTypeID CFNullGetTypeID(void);

/* Adds one owner; returns object. */
CF_EXPORT CFTypeRef CFRetain(CFTypeRef object);

/* Takes one owner away; the last one frees the object and releases what it holds. */
CF_EXPORT void CFRelease(CFTypeRef object);

/* The number of owners, for diagnosis alone. Constant objects, which are never freed, answer the largest
 * CFIndex. */
CF_EXPORT CFIndex CFGetRetainCount(CFTypeRef object);

/* Compares with what CFStringGetTypeID and its like return. */
CF_EXPORT CFTypeID CFGetTypeID(CFTypeRef object);

/* True when both are of one type and hold equal values. */
CF_EXPORT Boolean CFEqual(CFTypeRef object1, CFTypeRef object2);

/* Equal objects have equal hash codes. The codes of mutable objects change with their content. */
CF_EXPORT CFHashCode CFHash(CFTypeRef object);

/* A text for people who debug; its form may change. The caller owns the result. */
CF_EXPORT CFStringRef CFCopyDescription(CFTypeRef object);

CF_EXTERN_C_END

#endif
