#include "Station.h"

#include "tqx/log/read/LineEncoder.h"
#include "tqx/log/record/FieldFilter.h"
#include "tqx/log/write/RawJson.h"
#include "tqx/log/write/ValueJson.h"

namespace tqx::testing
{

const Schema& station()
{
    static const Schema schema = Schema::read({TQX_STATION});
    return schema;
}

Schema schemaOf(const std::string& text)
{
    return Schema::parse({{"more.yaml", text}});
}

std::vector<uint8_t> encoded(const Schema& schema, std::string_view line)
{
    return LineEncoder(schema).encode(line);
}

Block blockOf(const std::vector<uint8_t>& bytes)
{
    return {bytes.data(), static_cast<uint16_t>(bytes.size()), 0};
}

std::string storedLine(const Schema& schema, const std::vector<uint8_t>& bytes)
{
    RecordDecoder decoder(schema);
    if (decoder.decode(blockOf(bytes)) <= 0)
        return "";
    const FieldFilter everything({}, schema);
    Buffer line;
    RawJson(everything).write(line, decoder.getDecoded());
    return std::string(line.view());
}

std::string scaledLine(const Schema& schema, const std::vector<uint8_t>& bytes,
                       const std::vector<std::string>& fields)
{
    RecordDecoder decoder(schema);
    if (decoder.decode(blockOf(bytes)) <= 0)
        return "";
    const FieldFilter filter(fields, schema);
    Buffer line;
    ValueJson(filter).write(line, decoder.getDecoded());
    const std::string text(line.view());
    const size_t start = text.find("\"fields\":");
    return start == std::string::npos ? text : text.substr(start + 9, text.size() - start - 11);
}

const std::vector<std::string> stationLines = {
    R"({"block":"WeatherReport","fields":{"TOW":216000000,"WNc":2400,"Temperature":-1234,
        "Pressure":1013250,"Rain":1,"Trend":-1,"Sky":2,"East":3,"North":-4}})",
    R"({"block":"WeatherReport","fields":{"TOW":216001000,"WNc":2400,"Revision":1,"Sky":255,
        "Temperature":-32768,"East":-2e10,"North":1,"Gust":7.5}})",
    R"({"block":"WeatherReport","fields":{"TOW":216002000,"WNc":2400,"Revision":2,"Gust":0.5,
        "Humidity":55}})",
    R"({"block":"StationMasts","fields":{"TOW":216003000,"WNc":2400,"Name":"Graz","Masts":[]}})",
    R"({"block":"StationMasts","fields":{"TOW":216004000,"WNc":2400,"Revision":1,"Name":"Graz",
        "Masts":[{"Index":1,"MSB":1,"LSB":5,"Kind":1,"Heat":{"Celsius":-105},"Readings":[
        {"Offset":-1,"Lower":1000,"Quality":7},{"Offset":0,"Lower":3,"Quality":255}]},
        {"Index":2,"Kind":2,"Force":{"Newton":-3},"Readings":[]},
        {"Index":3,"Kind":9,"Readings":[{"Lower":2000}]}]}})",
    R"({"block":"StationImage","fields":{"TOW":216005000,"WNc":2400,"Pixels":[1,2,3,4],
        "Caption":"fog"}})",
};

} // namespace tqx::testing
