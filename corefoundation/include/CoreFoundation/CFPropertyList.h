/* CoreFoundation subset: XML property lists, version 1.0 (http://www.apple.com/DTDs/PropertyList-1.0.dtd).
 * See CFBase.h for ownership, errors and threads.
 * A property list is a CFString, CFNumber, CFBoolean or CFData, or a CFArray or CFDictionary of property
 * lists whose keys are strings. Dates are not supported.
 */
#ifndef COREFOUNDATION_CFPROPERTYLIST_H
#define COREFOUNDATION_CFPROPERTYLIST_H

#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFData.h>

CF_EXTERN_C_BEGIN

typedef CFTypeRef CFPropertyListRef;

typedef enum CFPropertyListMutabilityOptions {
    kCFPropertyListImmutable = 0,
    kCFPropertyListMutableContainers = 1,         /* arrays and dictionaries can be changed */
    kCFPropertyListMutableContainersAndLeaves = 2 /* the same: there are no mutable strings and data */
} CFPropertyListMutabilityOptions;

/* Reads an XML property list. The caller owns the result, and on failure (NULL) the text in *errorString,
 * which says what is wrong and in which line; on success that is NULL. errorString itself may be NULL.
 * Nothing outside data is ever read, entities other than the five predefined ones are refused, and size and
 * nesting are limited. */
CF_EXPORT CFPropertyListRef CFPropertyListCreateFromXMLData(CFAllocatorRef allocator, CFDataRef data,
                                                            CFOptionFlags mutabilityOption,
                                                            CFStringRef* errorString);

/* Writes UTF-8 XML. The caller owns the result; NULL when something in propertyList is not a property list, is
 * nested too deeply, or is a text with characters that XML cannot express. Values in collections must be
 * objects. */
CF_EXPORT CFDataRef CFPropertyListCreateXMLData(CFAllocatorRef allocator, CFPropertyListRef propertyList);

CF_EXTERN_C_END

#endif
