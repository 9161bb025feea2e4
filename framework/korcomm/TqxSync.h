#pragma once

#include "korcomm_export.h"
#include "tqx/framing/BlockFramer.h"

#include <QByteArray>
#include <QObject>

/// Finds complete TQX blocks with valid checksums in a stream of bytes, see tqx::BlockFramer for
/// the rules. Signals report damage, emitted while appendBytes, getBlockBytes and flush run;
/// none of it ends the work, and receivers may call back. Used by one thread at a time.
class KORCOMM_API TqxSync : public QObject, private tqx::BlockFramer::Listener
{
    Q_OBJECT
public:
    /// Owned by `parent`, if there is one.
    explicit TqxSync(QObject* parent = nullptr);
    ~TqxSync() override;

    /// Adds received bytes; they are copied.
    void appendBytes(const QByteArray& bytes);

    /// Whether a complete block is available.
    bool hasBlock() const;

    /// Removes and returns the next complete block, sync characters included; an empty array when
    /// there is none.
    QByteArray getBlockBytes();

    /// Number of bytes appended that are neither returned nor dropped, at most INT_MAX.
    virtual int getNumberOfBytesLeft() const;

    /// Ends the input: candidates that can never become complete are given up, and the intact
    /// blocks after them become available.
    void flush();

Q_SIGNALS:
    /// A complete candidate whose checksum does not match.
    void CRCError();
    /// Bytes that belong to no block, one signal per run of them.
    void droppedBytes(uint32_t nrBytes);
    /// A header that claims fewer bytes than a header has.
    void invalidLength();

private:
    void onChecksumFailed(uint64_t offset) override;
    void onInvalidLength(uint64_t offset) override;
    void onBytesDropped(uint64_t offset, uint64_t count) override;

    tqx::BlockFramer m_framer;
};
