#pragma once

class MessageInfo;

/// One message type in the order in which the registry lists them.
struct TQX_RegistrationRow {
    const MessageInfo* (*getInstance)();
    bool isMain;
};

struct TQX_RegistrationList {
    const TQX_RegistrationRow* rows;
    unsigned count;
};

/// The generated list of all message types.
TQX_RegistrationList TQX_registration();
