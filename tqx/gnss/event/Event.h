#pragma once

#include "tqx/gnss/position/Position.h"

#include <string_view>

namespace tqx
{

/// A pulse on an input of the receiver, such as a camera gives when it takes a picture.
struct Event {
    /// Where its position or attitude is from.
    enum class Origin : uint8_t {
        None,
        Receiver,     ///< a block that the receiver wrote for the event
        Interpolated, ///< between two epochs
    };

    GnssMillis time = 0;      ///< the whole milliseconds of it
    uint32_t nanoseconds = 0; ///< after them, below a million
    std::string_view input;   ///< name of the input; empty when it is not known
    std::string_view edge;    ///< name of the edge; likewise
    Origin placeOrigin = Origin::None;
    Position position;                    ///< at that time; not known without an origin
    Origin attitudeOrigin = Origin::None; ///< of its heading, pitch and roll
};

} // namespace tqx
