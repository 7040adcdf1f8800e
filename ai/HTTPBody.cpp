#include "ai/HTTPBody.h"

HTTPBody::HTTPBody(QIODevice &source, std::function<void()> again)
    : m_source(source)
    , m_again(std::move(again))
{
    open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

bool HTTPBody::atEnd() const
{
    return !m_isOver && m_source.atEnd();
}

bool HTTPBody::reset()
{
    m_isOver = m_source.pos() > 0;
    return true;
}

qint64 HTTPBody::bytesAvailable() const
{
    return m_source.bytesAvailable();
}

qint64 HTTPBody::readData(char *data, qint64 size)
{
    if (!m_isOver)
        return m_source.read(data, size);
    m_again();
    return -1;
}

qint64 HTTPBody::writeData(const char * /*data*/, qint64 /*size*/)
{
    return -1;
}
