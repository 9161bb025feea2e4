#include "korcg_dbg_line.h"

#include "korcg_dbg.h"

#include <chrono>
#include <cstdio>
#include <sstream>
#include <thread>

namespace korcg
{

namespace
{

const char* levelName(uint32_t level)
{
    switch (level) {
    case DBG_LEVEL_FUNC:
        return "FUNC";
    case DBG_LEVEL_0:
        return "0";
    case DBG_LEVEL_1:
        return "1";
    case DBG_LEVEL_2:
        return "2";
    case DBG_LEVEL_ASSERT:
        return "ASRT";
    default:
        return "";
    }
}

std::string threadName()
{
    std::ostringstream name;
    name << std::this_thread::get_id();
    return name.str();
}

void appendFormatted(std::string* text, const char* format, va_list arguments)
{
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    if (length > 0) {
        const size_t start = text->size();
        text->resize(start + static_cast<size_t>(length) + 1);
        std::vsnprintf(text->data() + start, static_cast<size_t>(length) + 1, format, again);
        text->pop_back();
    }
    va_end(again);
}

void append(std::string* text, const char* format, ...) KORCG_PRINTF(2, 3);

void append(std::string* text, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    appendFormatted(text, format, arguments);
    va_end(arguments);
}

} // namespace

std::string formatLine(uint32_t fieldMask, const TraceOrigin& origin, const char* format,
                       va_list arguments)
{
    std::string line;
    if ((fieldMask & DBG_FIELD_TIME) != 0) {
        append(&line, "%10llu", static_cast<unsigned long long>(origin.time));
    }
    if ((fieldMask & DBG_FIELD_LEVEL) != 0) {
        append(&line, origin.level == DBG_LEVEL_ASSERT ? " %s:" : " Lv:%4s",
               levelName(origin.level));
    }
    if ((fieldMask & DBG_FIELD_THREAD) != 0) {
        append(&line, " Thd:%16s", threadName().c_str());
    }
    if ((fieldMask & DBG_FIELD_MODULE) != 0) {
        append(&line, " %10s", origin.module);
    }
    if ((fieldMask & DBG_FIELD_SUBMOD) != 0) {
        append(&line, " %10s", origin.subModule);
    }
    if ((fieldMask & DBG_FIELD_LINE) != 0) {
        append(&line, " Ln:%4d", origin.line);
    }
    if ((fieldMask & DBG_FIELD_FUNC) != 0) {
        append(&line, " %20s", origin.function);
    }
    if ((fieldMask & DBG_FIELD_FILE) != 0) {
        append(&line, " %20s", origin.file);
    }
    appendFormatted(&line, format, arguments);
    return line;
}

uint64_t currentTime()
{
    using namespace std::chrono;
    const auto now = duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
    return now < 0 ? 0 : static_cast<uint64_t>(now);
}

} // namespace korcg
