#include "ArrowText.h"

#include <cmath>
#include <cstdio>
#include <cstring>

namespace
{

template<typename Value>
Value valueAt(const void* buffer, size_t index)
{
    Value value;
    std::memcpy(&value, static_cast<const uint8_t*>(buffer) + index * sizeof value, sizeof value);
    return value;
}

size_t asSize(int64_t value)
{
    return static_cast<size_t>(value);
}

std::string stringAt(const ArrowArray& array, size_t row)
{
    const auto begin = valueAt<int32_t>(array.buffers[1], row);
    const auto end = valueAt<int32_t>(array.buffers[1], row + 1);
    const auto* texts = static_cast<const char*>(array.buffers[2]);
    return end == begin ? "" : std::string(texts + begin, texts + end);
}

std::string itemsText(const ArrowSchema& schema, const ArrowArray& array, size_t begin, size_t end)
{
    if (end > asSize(array.children[0]->length))
        return "<list out of range>";
    std::string text = "[";
    for (size_t item = begin; item < end; ++item) {
        text +=
            (item == begin ? "" : ",") + arrowText(*schema.children[0], *array.children[0], item);
    }
    return text + "]";
}

std::string numberText(char format, const void* values, size_t row)
{
    switch (format) {
    case 'C':
        return std::to_string(valueAt<uint8_t>(values, row));
    case 'c':
        return std::to_string(valueAt<int8_t>(values, row));
    case 'S':
        return std::to_string(valueAt<uint16_t>(values, row));
    case 's':
        return std::to_string(valueAt<int16_t>(values, row));
    case 'I':
        return std::to_string(valueAt<uint32_t>(values, row));
    case 'i':
        return std::to_string(valueAt<int32_t>(values, row));
    case 'L':
        return std::to_string(valueAt<uint64_t>(values, row));
    case 'f':
        return realText(static_cast<double>(valueAt<float>(values, row)));
    case 'g':
        return realText(valueAt<double>(values, row));
    case 't':
        return std::to_string(valueAt<int64_t>(values, row));
    default:
        return "<format>";
    }
}

} // namespace

std::string realText(double value)
{
    if (std::isnan(value))
        return "NaN";
    char text[40];
    std::snprintf(text, sizeof text, "%a", value);
    return text;
}

std::string quoted(const std::string& text)
{
    return '"' + text + '"';
}

std::string arrowText(const ArrowSchema& schema, const ArrowArray& array, size_t row)
{
    const std::string format = schema.format;
    if (row >= asSize(array.length) || schema.n_children != array.n_children)
        return "<row out of range>";
    const auto* bits = static_cast<const uint8_t*>(array.buffers[0]);
    if (bits && (bits[row / 8] >> row % 8 & 1) == 0)
        return "null";
    if (schema.dictionary) {
        const std::string index = numberText(format[0], array.buffers[1], row);
        const int64_t place = std::stoll(index);
        if (place < 0 || place >= array.dictionary->length)
            return "<index " + index + ">";
        return arrowText(*schema.dictionary, *array.dictionary, asSize(place));
    }
    if (format == "u")
        return quoted(stringAt(array, row));
    if (format == "+l") {
        return itemsText(schema, array, asSize(valueAt<int32_t>(array.buffers[1], row)),
                         asSize(valueAt<int32_t>(array.buffers[1], row + 1)));
    }
    if (format.substr(0, 3) == "+w:") {
        const size_t size = std::stoul(format.substr(3));
        return itemsText(schema, array, row * size, (row + 1) * size);
    }
    if (format != "+s")
        return numberText(format[0], array.buffers[1], row);
    std::string text = "{";
    for (int64_t i = 0; i < schema.n_children; ++i) {
        text += (i == 0 ? "" : ",") + std::string(schema.children[i]->name) + "=" +
                arrowText(*schema.children[i], *array.children[i], row);
    }
    return text + "}";
}

std::string metadataOf(const ArrowSchema& schema, const std::string& key)
{
    const char* at = schema.metadata;
    const auto number = [&at] {
        const auto value = valueAt<int32_t>(at, 0);
        at += sizeof value;
        return asSize(value);
    };
    const auto text = [&] {
        const size_t size = number();
        at += size;
        return std::string(at - size, size);
    };
    for (size_t pairs = at ? number() : 0; pairs != 0; --pairs) {
        const std::string name = text();
        const std::string value = text();
        if (name == key)
            return value;
    }
    return "";
}

int findColumn(const ArrowSchema& table, const std::string& name)
{
    for (int64_t i = 0; i < table.n_children; ++i) {
        if (table.children[i]->name == name)
            return static_cast<int>(i);
    }
    return -1;
}
