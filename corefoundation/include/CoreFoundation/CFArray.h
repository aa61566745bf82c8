/* CoreFoundation subset: ordered collections. See CFBase.h for ownership, errors and threads. */
#ifndef COREFOUNDATION_CFARRAY_H
#define COREFOUNDATION_CFARRAY_H

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

typedef const struct CFArray* CFArrayRef;
typedef struct CFArray* CFMutableArrayRef;

typedef const void* (*CFArrayRetainCallBack)(CFAllocatorRef allocator, const void* value);
typedef void (*CFArrayReleaseCallBack)(CFAllocatorRef allocator, const void* value);
typedef CFStringRef (*CFArrayCopyDescriptionCallBack)(const void* value);
typedef Boolean (*CFArrayEqualCallBack)(const void* value1, const void* value2);

/* What an array does with its values. Any function may be NULL: nothing is retained or released, values are
 * described and compared as addresses. version is 0. */
typedef struct CFArrayCallBacks {
    CFIndex version;
    CFArrayRetainCallBack retain;
    CFArrayReleaseCallBack release;
    CFArrayCopyDescriptionCallBack copyDescription;
    CFArrayEqualCallBack equal;
} CFArrayCallBacks;

/* For values that are objects of this library: the array is one of their owners. */
CF_EXPORT const CFArrayCallBacks kCFTypeArrayCallBacks;

CF_EXPORT CFTypeID CFArrayGetTypeID(void);

/* The caller owns the result. callBacks is copied; NULL means that values are plain pointers. capacity is a hint and limits nothing. */
CF_EXPORT CFArrayRef CFArrayCreate(CFAllocatorRef allocator, const void** values, CFIndex count,
                                   const CFArrayCallBacks* callBacks);
CF_EXPORT CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                                 const CFArrayCallBacks* callBacks);

/* Values are lent to the caller. */
CF_EXPORT CFIndex CFArrayGetCount(CFArrayRef array);
CF_EXPORT const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);

/* The array retains what goes in and releases what goes out. Set accepts the index behind the last value. */
CF_EXPORT void CFArrayAppendValue(CFMutableArrayRef array, const void* value);
CF_EXPORT void CFArrayAppendArray(CFMutableArrayRef array, CFArrayRef other, CFRange otherRange);
CF_EXPORT void CFArraySetValueAtIndex(CFMutableArrayRef array, CFIndex index, const void* value);
CF_EXPORT void CFArrayRemoveValueAtIndex(CFMutableArrayRef array, CFIndex index);
CF_EXPORT void CFArrayRemoveAllValues(CFMutableArrayRef array);

CF_EXTERN_C_END

#endif
