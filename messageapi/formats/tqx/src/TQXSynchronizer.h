#pragma once

#include "tqx_export.h"

#include "AbstractSync.h"

#include <cstdint>

class TqxSync;

/// Finds complete TQX blocks with valid checksums in a stream of bytes, for TQXDecoder. Errors in
/// the stream are published by newEvent during appendBytes, getBlockBytes and flush, and never end
/// the work: a bad checksum ("TQX_ERR_INVALID_CRC"), bytes that belong to no block, and a length
/// that is too small ("TQX_ERR_INVALID_LENGTH"), each of type DecodingError. Memory stays bounded
/// as long as the blocks are fetched before more is appended. Used by one thread at a time.
class TQX_API TQXSynchronizer : public AbstractSync
{
    Q_OBJECT

public:
    TQXSynchronizer();
    ~TQXSynchronizer() override;

    /// Adds received bytes, in pieces of any size; they are copied.
    void appendBytes(QByteArray& bytes) override;

    /// Whether getBlockBytes has a complete block to return.
    bool hasBlock() const override;

    /// Removes and returns the next complete block, "$@" included; empty when there is none.
    QByteArray getBlockBytes() override;

    /// Number of bytes added and neither returned nor dropped.
    int getNumberOfBytesLeft() const override;

    /// Ends the input: a block that can never become complete is given up, and intact ones after
    /// its apparent header can be fetched. Does nothing with a communications library that does not
    /// support this.
    void flush();

private Q_SLOTS:
    void onCRCError();
    void onDroppedBytes(uint32_t nrBytes);
    void onInvalidLength();

private:
    TqxSync* m_sync;
};
