#pragma once

#include <string>

class Message;

struct FieldValue {
    enum RepresentationMode { Default = 0, BitMask = 1 };

    std::string text;

    static FieldValue u(unsigned long long value, unsigned char width)
    {
        return {std::to_string(value) + ":u" + std::to_string(width)};
    }
    static FieldValue i(long long value, unsigned char width)
    {
        return {std::to_string(value) + ":i" + std::to_string(width)};
    }
    static FieldValue f32(float value) { return {std::to_string(value) + ":f32"}; }
    static FieldValue f64(double value) { return {std::to_string(value) + ":f64"}; }
    static FieldValue ch(char value) { return {std::string(1, value) + ":ch"}; }
    static FieldValue subMessage(const Message*) { return {"message"}; }
};
