// CoreFoundation objects to JSON values and back: texts, truth values, whole and real numbers, arrays and
// dictionaries with texts as keys. Any thread.
#pragma once

#include <CoreFoundation++/CFRef.h>

#include <nlohmann/json_fwd.hpp>

enum class WholeNumbers {
    kAsTheyAre,  ///< a real number stays one: 3.0
    kAsIntegers  ///< a real number without a fraction becomes an integer: 3
};

/// Null for null, for objects of other kinds, and for what is nested deeper than `deepest` levels below
/// `object`.
nlohmann::json JSONFromCF(CFTypeRef object, int deepest, WholeNumbers wholeNumbers);

/// Null for JSON's null and for what is nested deeper than `deepest` levels below `value`; members and
/// elements that are null are left out. Bytes that are not UTF-8 are replaced by U+FFFD; a number beyond 64
/// bits becomes a real one.
CFRef<CFTypeRef> CFFromJSON(const nlohmann::json& value, int deepest);
