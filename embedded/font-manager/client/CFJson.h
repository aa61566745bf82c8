// CoreFoundation objects to JSON values and back.
#pragma once

#include <CoreFoundation++/CFRef.h>
#include "ipc/Message.h"

namespace pellwick {

/// Strings, whole numbers, real numbers, truth values, arrays and dictionaries with string keys. Null for
/// null and for any other object.
Json JsonFromCF(CFTypeRef object);

/// The database IDs in an array of font records, or of IDs: for most methods the agent needs nothing else.
Json IDsFromCF(CFArrayRef fonts);

/// Null for JSON's null.
CFRef<CFTypeRef> CFFromJson(const Json& value);

/// Appends what is in the JSON array; null is not an array.
void AppendJson(CFMutableArrayRef array, const Json& values);

/// Adds the images of fonts' names to a dictionary: by the font's ID, their paths.
void AddPreviews(CFMutableDictionaryRef dictionary, const Json& previews);

}  // namespace pellwick
