#pragma once

#include "tqx/gnss/event/Event.h"
#include "tqx/log/text/Buffer.h"
#include "tqx_gnss_export.h"

namespace tqx
{

enum class EventFormat : uint8_t {
    Csv,
    GeoJson, ///< RFC 7946; features of events without a position have no geometry
};

/// Writes events into a buffer, which may be emptied between any two calls.
class TQX_GNSS_API EventWriter
{
public:
    /// `out` must outlive it.
    EventWriter(EventFormat format, Buffer& out) : m_format(format), m_out(out) {}

    void begin();
    void add(const Event& event);
    void end();

private:
    void addRow(const Event& event);
    void addFeature(const Event& event);

    EventFormat m_format;
    Buffer& m_out;
    bool m_isFirst = true;
};

} // namespace tqx
