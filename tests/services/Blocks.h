#pragma once

#include "TQX_FormatInfo.h"
#include "TQX_codec.h"

#include "MessageApiEvent.h"
#include "MessageInfo.h"

#include <QByteArray>
#include <QFile>
#include <QString>

#include <gtest/gtest.h>

#include <ostream>
#include <string>

/// The bytes of a record that `encode` writes.
template<typename Record>
QByteArray encoded(int (*encode)(unsigned char*, unsigned short, Record*), Record& record)
{
    QByteArray bytes(65535, '\0');
    const int bits = encode(reinterpret_cast<unsigned char*>(bytes.data()), 65535, &record);
    EXPECT_GT(bits, 0);
    bytes.truncate(bits / 8);
    return bytes;
}

/// A block of revision 2, all of whose bytes are decoded.
inline QByteArray pvtGeodetic2(uint32_t timeOfWeek = 345600000, uint16_t week = 2000)
{
    Kor::MessageApi::TQX_PVTGeodetic2_s record;
    TQX_init_PVTGeodetic2(&record);
    record.ID = 4007 | 2 << 13;
    record.Revision = 2;
    record.TOW = timeOfWeek;
    record.WNc = week;
    return encoded(TQX_encode_PVTGeodetic2, record);
}

inline QByteArray measEpoch2(uint8_t channels)
{
    Kor::MessageApi::TQX_MeasEpoch2_s record;
    TQX_init_MeasEpoch2(&record);
    for (uint8_t i = 0; i < channels; ++i) {
        TQX_append_MeasEpoch2_Type1(&record);
    }
    return encoded(TQX_encode_MeasEpoch2, record);
}

/// A block of zeros.
inline QByteArray blockOfNumber(uint16_t number)
{
    QByteArray bytes("$@\0\0\0\0\x10\0\0\0\0\0\0\0\0\0", 16);
    bytes[4] = static_cast<char>(number & 0xff);
    bytes[5] = static_cast<char>(number >> 8);
    return bytes;
}

inline const uint8_t* bytesOf(const QByteArray& bytes)
{
    return reinterpret_cast<const uint8_t*>(bytes.constData());
}

inline uint32_t sizeOf(const QByteArray& bytes)
{
    return static_cast<uint32_t>(bytes.size());
}

/// "type text" of an event, which must come from the TQX format.
inline std::string described(const MessageApiEvent& event)
{
    EXPECT_EQ(event.getFormatInfo(), TQX_FormatInfo::getInstance());
    return std::to_string(event.getType()) + ' ' + event.getText().toStdString();
}
