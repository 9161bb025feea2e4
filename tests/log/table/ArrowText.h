#pragma once

#include "tqx/log/table/ArrowInterface.h"

#include <cstddef>
#include <string>

/// A value of an array as text: numbers in decimal, floats in hexadecimal, texts in quotes, lists
/// in brackets, structs in braces, "null". Reads what the interface says and nothing else; what
/// does not fit together gives text in angle brackets.
std::string arrowText(const ArrowSchema& schema, const ArrowArray& array, size_t row);

/// The value of a key of the metadata, "" if there is none.
std::string metadataOf(const ArrowSchema& schema, const std::string& key);

/// The column of that name, as its index; -1 if there is none.
int findColumn(const ArrowSchema& table, const std::string& name);

/// How numbers are written.
std::string realText(double value);
std::string quoted(const std::string& text);
