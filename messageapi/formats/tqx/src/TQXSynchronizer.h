#pragma once

#include "tqx_export.h"

#include "AbstractSync.h"

#include <cstdint>

class TqxSync;

/// Cuts a stream of bytes into whole TQX blocks whose checksum matches, for TQXDecoder. What is
/// wrong with the stream is published by newEvent during appendBytes, getBlockBytes and flush, and
/// none of it ends the work: a bad checksum ("TQX_ERR_INVALID_CRC"), bytes that belong to no block,
/// and a length that is too small ("TQX_ERR_INVALID_LENGTH"), each of type DecodingError. Memory
/// stays bounded as long as the blocks are fetched before more is appended. Used by one thread at a
/// time.
class TQX_API TQXSynchronizer : public AbstractSync
{
    Q_OBJECT

public:
    TQXSynchronizer();
    ~TQXSynchronizer() override;

    /// Adds received bytes, in pieces of any size; they are copied.
    void appendBytes(QByteArray& bytes) override;

    /// Whether getBlockBytes has a whole block to return.
    bool hasBlock() const override;

    /// Removes and returns the next whole block, "$@" first; empty when there is none.
    QByteArray getBlockBytes() override;

    /// Bytes added and neither returned nor dropped.
    int getNumberOfBytesLeft() const override;

    /// The input has ended: a block that can never become complete is given up, and intact ones
    /// after what looked like its header can be fetched. Does nothing over a communications
    /// library that does not offer it.
    void flush();

private Q_SLOTS:
    void onCRCError();
    void onDroppedBytes(uint32_t nrBytes);
    void onInvalidLength();

private:
    TqxSync* m_sync;
};
