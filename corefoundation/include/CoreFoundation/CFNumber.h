/* CoreFoundation subset: numbers and truth values. See CFBase.h for ownership, errors and threads. */
#ifndef COREFOUNDATION_CFNUMBER_H
#define COREFOUNDATION_CFNUMBER_H

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

typedef const struct CFBoolean* CFBooleanRef;
typedef const struct CFNumber* CFNumberRef;

/* The C type that a pointer handed to CFNumberCreate or CFNumberGetValue points at. */
typedef enum CFNumberType {
    kCFNumberSInt8Type = 1,
    kCFNumberSInt16Type = 2,
    kCFNumberSInt32Type = 3,
    kCFNumberSInt64Type = 4,
    kCFNumberFloat32Type = 5,
    kCFNumberFloat64Type = 6,
    kCFNumberCharType = 7, /* signed char */
    kCFNumberShortType = 8,
    kCFNumberIntType = 9,
    kCFNumberLongType = 10,
    kCFNumberLongLongType = 11,
    kCFNumberFloatType = 12,
    kCFNumberDoubleType = 13,
    kCFNumberCFIndexType = 14,
    kCFNumberNSIntegerType = 15, /* as CFIndex */
    kCFNumberCGFloatType = 16,   /* double */
    kCFNumberMaxType = 16
} CFNumberType;

CF_EXPORT const CFBooleanRef kCFBooleanTrue;  /* never freed */
CF_EXPORT const CFBooleanRef kCFBooleanFalse; /* never freed */

CF_EXPORT CFTypeID CFBooleanGetTypeID(void);
CF_EXPORT Boolean CFBooleanGetValue(CFBooleanRef boolean);

CF_EXPORT CFTypeID CFNumberGetTypeID(void);

/* Reads one value of the given type at value. The caller owns the result. */
CF_EXPORT CFNumberRef CFNumberCreate(CFAllocatorRef allocator, CFNumberType type, const void* value);

/* The type as which the number is stored: the fixed-size one (SInt8 to SInt64, Float32, Float64) that is as
 * large as the type it was created with. */
CF_EXPORT CFNumberType CFNumberGetType(CFNumberRef number);
CF_EXPORT CFIndex CFNumberGetByteSize(CFNumberRef number);
CF_EXPORT Boolean CFNumberIsFloatType(CFNumberRef number);

/* Writes the number as the given type to value. False when that is not exact; value then holds the nearest
 * value: fractions are cut off, what is out of range becomes the smallest or largest value, and not-a-number
 * becomes 0. */
CF_EXPORT Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value);

CF_EXTERN_C_END

#endif
