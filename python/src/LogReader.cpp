#include "LogReader.h"

#include "Interrupts.h"
#include "tqx/log/select/TypeSelection.h"

#include <utility>

namespace tqx::python
{

LogReader::LogReader(std::vector<std::shared_ptr<LogFile>> logs, std::vector<uint16_t> numbers,
                     std::optional<GnssMillis> from, std::optional<GnssMillis> to)
    : m_logs(std::move(logs)), m_decoder(m_logs.empty() ? Schema() : m_logs.front()->getSchema())
{
    m_query.numbers = std::move(numbers);
    m_query.from = from;
    m_query.to = to;
}

bool LogReader::next(Block& block)
{
    constexpr unsigned blocksPerCheck = 1024;
    if (++m_sinceCheck == blocksPerCheck) {
        m_sinceCheck = 0;
        checkInterrupt();
    }
    while (m_current < m_logs.size()) {
        const LogFile& log = *m_logs[m_current];
        if (!m_blocks)
            m_blocks.emplace(log.getIndex(), log.getContent(), m_query);
        if (m_blocks->next(block))
            return true;
        m_blocks.reset();
        ++m_current;
    }
    return false;
}

WeekContext LogReader::getContext() const
{
    WeekContext context = m_blocks->getContext();
    context.weekCounter =
        static_cast<uint8_t>(context.weekCounter + m_logs[m_current]->getWeeksBefore());
    return context;
}

DecodedBlock LogReader::decode(const Block& block)
{
    const int32_t consumed = m_decoder.decode(block, getContext());
    return consumed > 0 ? m_decoder.getDecoded() : DecodedBlock{block, nullptr, consumed};
}

std::vector<uint16_t> numbersOf(const std::function<bool(uint16_t)>& wants)
{
    std::vector<uint16_t> numbers;
    for (size_t number = 0; number < TypeSelection::numbers; ++number) {
        if (wants(static_cast<uint16_t>(number)))
            numbers.push_back(static_cast<uint16_t>(number));
    }
    return numbers;
}

} // namespace tqx::python
