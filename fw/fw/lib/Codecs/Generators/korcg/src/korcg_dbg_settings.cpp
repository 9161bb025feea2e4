#include "korcg_dbg_settings.h"

#include <cstdlib>
#include <cstring>

namespace korcg
{

namespace
{

struct Keyword {
    const char* word;
    uint32_t bit;
};

constexpr Keyword levels[] = {
    {"2", DBG_LEVEL_2}, {"1", DBG_LEVEL_1}, {"0", DBG_LEVEL_0}, {"FUNC", DBG_LEVEL_FUNC}};

constexpr Keyword fields[] = {{"MODULE", DBG_FIELD_MODULE}, {"SUBMOD", DBG_FIELD_SUBMOD},
                              {"FUNC", DBG_FIELD_FUNC},     {"FILE", DBG_FIELD_FILE},
                              {"LINE", DBG_FIELD_LINE},     {"LEVEL", DBG_FIELD_LEVEL},
                              {"TIME", DBG_FIELD_TIME},     {"THREAD", DBG_FIELD_THREAD}};

constexpr uint32_t allLevels = 255;
constexpr uint32_t allFields = 511;
constexpr uint32_t defaultFields =
    DBG_FIELD_SUBMOD | DBG_FIELD_FUNC | DBG_FIELD_LINE | DBG_FIELD_LEVEL;

class Environment
{
public:
    explicit Environment(const dbg_CallBacks_s& callBacks) : m_callBacks(callBacks) {}

    /// Valid until the next call.
    const char* operator()(const char* name) const
    {
        return m_callBacks.lookup != nullptr ? m_callBacks.lookup(m_callBacks.context, name)
                                             : std::getenv(name);
    }

private:
    const dbg_CallBacks_s& m_callBacks;
};

bool contains(const char* text, const char* word)
{
    return std::strstr(text, word) != nullptr;
}

template<size_t Count>
uint32_t bitsOf(const Keyword (&keywords)[Count], const char* value)
{
    uint32_t bits = 0;
    for (const Keyword& keyword : keywords) {
        if (contains(value, keyword.word)) {
            bits |= keyword.bit;
        }
    }
    return bits;
}

uint32_t parseLevels(const char* value)
{
    if (value == nullptr) {
        return DBG_LEVEL_ALWAYS;
    }
    if (contains(value, "all")) {
        return allLevels;
    }
    return contains(value, "none") ? 0 : DBG_LEVEL_ALWAYS | bitsOf(levels, value);
}

uint32_t parseFields(const char* value)
{
    if (value == nullptr) {
        return defaultFields;
    }
    return contains(value, "all") ? allFields : bitsOf(fields, value);
}

/// Seconds to milliseconds. Leaves `*milliseconds` alone when there is no value; times before the
/// epoch become 0, times beyond the range of 64 bits the last one. False when it is not an integer.
bool parseTime(const char* value, uint64_t* milliseconds)
{
    if (value == nullptr || *value == '\0') {
        return true;
    }
    char* end;
    const long long seconds = std::strtoll(value, &end, 10);
    if (end == value || end[std::strspn(end, " \t\r\n")] != '\0') {
        return false;
    }
    if (seconds < 0) {
        *milliseconds = 0;
    } else if (static_cast<uint64_t>(seconds) > UINT64_MAX / 1000) {
        *milliseconds = UINT64_MAX;
    } else {
        *milliseconds = static_cast<uint64_t>(seconds) * 1000;
    }
    return true;
}

char* copyOf(const char* text)
{
    if (text == nullptr) {
        return nullptr;
    }
    const size_t size = std::strlen(text) + 1;
    auto* copy = static_cast<char*>(std::malloc(size));
    if (copy != nullptr) {
        std::memcpy(copy, text, size);
    }
    return copy;
}

} // namespace

int readSettings(const dbg_CallBacks_s& callBacks, const char* logFileVariable,
                 dbg_Settings_s* settings)
{
    const Environment environment(callBacks);
    settings->subModules = copyOf(environment("KOR_SUBMODULES"));
    settings->modules = copyOf(environment("KOR_MODULES"));
    if (!parseTime(environment("KOR_STARTTIME"), &settings->startTime) ||
        !parseTime(environment("KOR_STOPTIME"), &settings->stopTime)) {
        return DBG_ERROR_UNKNOWN_TYPE;
    }
    const char* logFile = environment(logFileVariable != nullptr ? logFileVariable : "KOR_LOGFILE");
    settings->stream = logFile != nullptr ? std::fopen(logFile, "a+") : nullptr;
    if (settings->stream == nullptr) {
        settings->stream = stdout;
    }
    if (callBacks.setStream != nullptr) {
        callBacks.setStream(callBacks.context, settings->stream);
    }
    settings->levelMask = parseLevels(environment("KOR_TRACELEVEL"));
    settings->fieldMask = parseFields(environment("KOR_TRACEINFO"));
    return DBG_SUCCESS;
}

bool passesFilter(const char* filter, const char* name)
{
    if (filter == nullptr || std::strcmp(filter, "all") == 0) {
        return true;
    }
    return std::strcmp(filter, "none") != 0 && contains(filter, name);
}

} // namespace korcg
