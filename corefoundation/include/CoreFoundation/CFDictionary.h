/* CoreFoundation subset: key and value pairs, looked up by hash. See CFBase.h for ownership, errors and
 * threads. Keys and values are always visited in the order in which the keys were first set, so that output
 * is the same on every run.
 */
#ifndef COREFOUNDATION_CFDICTIONARY_H
#define COREFOUNDATION_CFDICTIONARY_H

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

typedef const struct CFDictionary* CFDictionaryRef;
typedef struct CFDictionary* CFMutableDictionaryRef;

typedef const void* (*CFDictionaryRetainCallBack)(CFAllocatorRef allocator, const void* value);
typedef void (*CFDictionaryReleaseCallBack)(CFAllocatorRef allocator, const void* value);
typedef CFStringRef (*CFDictionaryCopyDescriptionCallBack)(const void* value);
typedef Boolean (*CFDictionaryEqualCallBack)(const void* value1, const void* value2);
typedef CFHashCode (*CFDictionaryHashCallBack)(const void* value);

/* What a dictionary does with its keys and with its values. Any function may be NULL: nothing is retained or
 * released, pointers are described, compared and hashed as addresses. version is 0. */
typedef struct CFDictionaryKeyCallBacks {
    CFIndex version;
    CFDictionaryRetainCallBack retain;
    CFDictionaryReleaseCallBack release;
    CFDictionaryCopyDescriptionCallBack copyDescription;
    CFDictionaryEqualCallBack equal;
    CFDictionaryHashCallBack hash;
} CFDictionaryKeyCallBacks;

typedef struct CFDictionaryValueCallBacks {
    CFIndex version;
    CFDictionaryRetainCallBack retain;
    CFDictionaryReleaseCallBack release;
    CFDictionaryCopyDescriptionCallBack copyDescription;
    CFDictionaryEqualCallBack equal;
} CFDictionaryValueCallBacks;

/* For keys and values that are objects of this library: the dictionary is one of their owners. */
CF_EXPORT const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
CF_EXPORT const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;

typedef void (*CFDictionaryApplierFunction)(const void* key, const void* value, void* context);

CF_EXPORT CFTypeID CFDictionaryGetTypeID(void);

/* The caller owns the result. Callbacks are copied; NULL means plain pointers. A copy has the callbacks of
 * its source. capacity is a hint and limits nothing. */
CF_EXPORT CFDictionaryRef CFDictionaryCreateCopy(CFAllocatorRef allocator, CFDictionaryRef dictionary);
CF_EXPORT CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                                           const CFDictionaryKeyCallBacks* keyCallBacks,
                                                           const CFDictionaryValueCallBacks* valueCallBacks);
CF_EXPORT CFMutableDictionaryRef CFDictionaryCreateMutableCopy(CFAllocatorRef allocator, CFIndex capacity,
                                                               CFDictionaryRef dictionary);

/* Values and keys are lent to the caller. GetValue answers NULL for a missing key. */
CF_EXPORT CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary);
CF_EXPORT const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key);
CF_EXPORT Boolean CFDictionaryContainsValue(CFDictionaryRef dictionary, const void* value);

/* Writes all keys and all values in matching order; each array has room for the count, or is NULL. */
CF_EXPORT void CFDictionaryGetKeysAndValues(CFDictionaryRef dictionary, const void** keys,
                                            const void** values);

/* Calls applier for each pair. It must not change the dictionary. */
CF_EXPORT void CFDictionaryApplyFunction(CFDictionaryRef dictionary, CFDictionaryApplierFunction applier,
                                         void* context);

/* Set adds or replaces; a replaced value keeps the stored key and its place. Remove does nothing when the key
 * is missing. */
CF_EXPORT void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key, const void* value);
CF_EXPORT void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void* key);
CF_EXPORT void CFDictionaryRemoveAllValues(CFMutableDictionaryRef dictionary);

CF_EXTERN_C_END

#endif
