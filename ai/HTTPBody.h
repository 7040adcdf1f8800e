#pragma once

#include <QIODevice>

#include <functional>

/// The body of a request as it goes out: from the front to the end, once.
///
/// When a connection breaks, the network library goes back to the beginning of the body and sends the request anew,
/// without a word to anybody. What is paid for must not be sent twice. Going back alone means nothing: the library does
/// so at some answers, too.
class HTTPBody : public QIODevice
{
public:
    /// Reads from `source`, which is open and outlives this. `again` is called when the beginning is asked for a second
    /// time; there is nothing more to be had then.
    HTTPBody(QIODevice &source, std::function<void()> again);

    bool isSequential() const override { return true; }
    bool atEnd() const override;
    bool reset() override;
    qint64 bytesAvailable() const override;

protected:
    qint64 readData(char *data, qint64 size) override;
    qint64 writeData(const char *data, qint64 size) override;

private:
    QIODevice &m_source;
    std::function<void()> m_again;
    bool m_isOver = false;
};
