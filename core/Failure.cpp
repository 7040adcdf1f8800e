#include "core/Failure.h"

#include <QDir>

using namespace Qt::StringLiterals;

Failure Failure::of(const std::exception &error)
{
    if (const auto *const refusal = dynamic_cast<const ConversionError *>(&error))
        return {.sentence = refusal->message(), .detail = refusal->detail()};
    if (const auto *const platform = dynamic_cast<const PlatformError *>(&error))
        return {.sentence = platform->description(), .detail = platform->detail()};
    return {.sentence = QString::fromUtf8(error.what())};
}

QString Failure::text() const
{
    return detail.isEmpty() ? sentence : sentence + u'\n' + detail;
}

QString Failure::joined(const QString &first, const QString &second)
{
    // A file that was named where it could not be opened need not be named again by whoever asked for it.
    if (first.isEmpty() || second.isEmpty() || first.endsWith(second))
        return first.isEmpty() ? second : first;
    return first + u' ' + second;
}

QString Failure::fileDetail(const QString &path)
{
    return u"文件：%1"_s.arg(QDir::toNativeSeparators(path));
}
