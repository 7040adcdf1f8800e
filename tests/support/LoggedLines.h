#pragma once

#include <QStringList>

/// What is logged while one of these lives, as "category: line". One at a time.
class LoggedLines
{
public:
    LoggedLines()
        : m_before(qInstallMessageHandler(take))
    {
        lines.clear();
    }
    ~LoggedLines() { qInstallMessageHandler(m_before); }
    Q_DISABLE_COPY_MOVE(LoggedLines)

    static inline QStringList lines;

private:
    static void take(QtMsgType /*type*/, const QMessageLogContext &context, const QString &line)
    {
        lines += QString::fromUtf8(context.category) + QStringLiteral(": ") + line;
    }

    const QtMessageHandler m_before;
};
