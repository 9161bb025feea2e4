#pragma once

#include <string>

class MessageInfo;

struct FieldType {
    std::string text;

    static FieldType u(unsigned char width) { return {"u" + std::to_string(width)}; }
    static FieldType i(unsigned char width) { return {"i" + std::to_string(width)}; }
    static FieldType f32() { return {"f32"}; }
    static FieldType f64() { return {"f64"}; }
    static FieldType ch() { return {"ch"}; }
    static FieldType subMessage(const MessageInfo* info) { return {info ? "sub" : "null"}; }
};
