#include "MemLeakTracer.h"

#include "NameCounters.h"

#include <QByteArray>

#include <array>
#include <cstring>

namespace
{

/// Names are short and ASCII as a rule: spares the allocation of QString::toUtf8.
class Utf8Name
{
public:
    explicit Utf8Name(const QString& text)
    {
        const int size = text.size();
        const auto* characters = text.utf16();
        if (size > static_cast<int>(m_short.size())) {
            useLong(text);
            return;
        }
        for (int i = 0; i < size; ++i) {
            if (characters[i] >= 0x80) {
                useLong(text);
                return;
            }
            m_short[static_cast<size_t>(i)] = static_cast<char>(characters[i]);
        }
        m_view = {m_short.data(), static_cast<size_t>(size)};
    }
    Utf8Name(const Utf8Name&) = delete;
    Utf8Name& operator=(const Utf8Name&) = delete;

    std::string_view view() const { return m_view; }

private:
    void useLong(const QString& text)
    {
        m_long = text.toUtf8();
        m_view = {m_long.constData(), static_cast<size_t>(m_long.size())};
    }

    std::array<char, 120> m_short;
    QByteArray m_long;
    std::string_view m_view;
};

void countAllocation(std::string_view name)
{
    NameCounters::get(name).allocations.fetch_add(1, std::memory_order_relaxed);
}

void countDeallocation(std::string_view name)
{
    NameCounters::get(name).deallocations.fetch_add(1, std::memory_order_relaxed);
}

} // namespace

void MemLeakTracer::allocateObject(const char* typeName)
{
    countAllocation(typeName);
}

void MemLeakTracer::allocateObject(const QString& typeName)
{
    countAllocation(Utf8Name(typeName).view());
}

void MemLeakTracer::deallocateObject(const char* typeName)
{
    countDeallocation(typeName);
}

void MemLeakTracer::deallocateObject(const QString& typeName)
{
    countDeallocation(Utf8Name(typeName).view());
}

qint64 MemLeakTracer::getObjectCount(const QString& typeName)
{
    const NameCounter* counter = NameCounters::find(Utf8Name(typeName).view());
    return counter ? counter->balance() : 0;
}

qint64 MemLeakTracer::getTotalAllocations(const QString& typeName)
{
    const NameCounter* counter = NameCounters::find(Utf8Name(typeName).view());
    return counter ? counter->allocations.load(std::memory_order_relaxed) : 0;
}

QStringList MemLeakTracer::getUnbalancedNames()
{
    QStringList names;
    NameCounters::forEach([&names](NameCounter& counter) {
        if (counter.balance() != 0) {
            const std::string_view name = counter.name();
            names.append(QString::fromUtf8(name.data(), static_cast<int>(name.size())));
        }
    });
    names.sort();
    return names;
}

void MemLeakTracer::reset()
{
    NameCounters::forEach([](NameCounter& counter) {
        counter.allocations.store(0, std::memory_order_relaxed);
        counter.deallocations.store(0, std::memory_order_relaxed);
    });
}
