#pragma once

#include <QAbstractScrollArea>
#include <QByteArray>

#include <cstdint>

namespace tqx::view
{

/// Bytes in hexadecimal digits and characters, with one marked range.
class BytesView : public QAbstractScrollArea
{
    Q_OBJECT

public:
    explicit BytesView(QWidget* parent = nullptr);

    /// `start` is the offset that the first byte is shown with.
    void setBytes(const QByteArray& bytes, uint64_t start);

    /// Marks a range and scrolls it into view; a size of 0 marks nothing.
    void mark(uint32_t offset, uint32_t size);
    uint64_t getOffset() const { return m_start; } ///< of the first byte
    uint32_t getMarkedOffset() const { return m_markOffset; }
    uint32_t getMarkedSize() const { return m_markSize; }

    /// Where a byte is shown, in the viewport.
    QRect cellOf(uint32_t offset) const;

Q_SIGNALS:
    /// A byte was clicked, or reached with the arrow keys.
    void byteSelected(quint32 offset);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    static constexpr int perLine = 16;

    int lineHeight() const;
    int hexLeft() const;
    int textLeft() const;
    int digitWidth() const;
    void updateScrollBars();

    QByteArray m_bytes;
    uint64_t m_start = 0;
    uint32_t m_markOffset = 0;
    uint32_t m_markSize = 0;
};

} // namespace tqx::view
