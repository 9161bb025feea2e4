#include "model/Names.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <filesystem>

namespace korcg::generator
{

std::string identifier(std::string_view displayName)
{
    std::string text(displayName);
    std::replace(text.begin(), text.end(), ' ', '_');
    return text;
}

std::string upperName(std::string_view displayName)
{
    std::string text = identifier(displayName);
    if (!text.empty() && text.front() == '_')
        text.erase(0, 1);
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

std::string recordName(const RecordType& type)
{
    return recordName(type.name);
}

std::string recordName(std::string_view typeName)
{
    return fmt::format("TQX_{}_s", typeName);
}

std::string_view memberType(Scalar type)
{
    switch (type) {
    case Scalar::U8:
        return "uint8_t";
    case Scalar::I8:
        return "int8_t";
    case Scalar::U16:
        return "uint16_t";
    case Scalar::I16:
        return "int16_t";
    case Scalar::U32:
        return "uint32_t";
    case Scalar::I32:
        return "int32_t";
    case Scalar::U64:
        return "uint64_t";
    case Scalar::F32:
        return "float";
    case Scalar::F64:
        return "double";
    case Scalar::Char:
        return "char";
    }
    return "";
}

std::string_view getterType(Scalar type)
{
    switch (type) {
    case Scalar::U8:
        return "unsigned char";
    case Scalar::I8:
        return "signed char";
    case Scalar::U16:
        return "unsigned short";
    case Scalar::I16:
        return "short";
    case Scalar::U32:
        return "unsigned int";
    case Scalar::I32:
        return "int";
    case Scalar::U64:
        return "unsigned long long";
    case Scalar::F32:
        return "float";
    case Scalar::F64:
        return "double";
    case Scalar::Char:
        return "char";
    }
    return "";
}

int bytesOf(Scalar type)
{
    switch (type) {
    case Scalar::U8:
    case Scalar::I8:
    case Scalar::Char:
        return 1;
    case Scalar::U16:
    case Scalar::I16:
        return 2;
    case Scalar::U32:
    case Scalar::I32:
    case Scalar::F32:
        return 4;
    case Scalar::U64:
    case Scalar::F64:
        return 8;
    }
    return 0;
}

bool isSigned(Scalar type)
{
    return type == Scalar::I8 || type == Scalar::I16 || type == Scalar::I32;
}

bool isFloat(Scalar type)
{
    return type == Scalar::F32 || type == Scalar::F64;
}

std::string literal(std::string_view text)
{
    std::string result = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\')
            result += '\\';
        if (c == '\n') {
            result += "\\n";
        } else {
            result += c;
        }
    }
    return result + '"';
}

std::string sourceOf(const RecordType& type)
{
    return std::filesystem::path(type.where.file).filename().string();
}

} // namespace korcg::generator
