// The headers of qpdf that are used here. They bring along JSON.hh, which clang 14 cannot compile as C++20: a class in
// it has a vector of its own kind. Nothing here uses that class, and a declaration stands for it.
#pragma once

// clang-format off
#define JSON_HH
#include <functional>
#include <map>
#include <vector>
class JSON;
// clang-format on
#include <qpdf/Buffer.hh>
#include <qpdf/BufferInputSource.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>
