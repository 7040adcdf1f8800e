#include "ai/Redaction.h"

#include <QList>
#include <QUrl>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace Redaction {

namespace {

constexpr qsizetype shortestPart = 6; ///< Characters anywhere in the key that are taken for a part of it.
constexpr qsizetype shortestEnd = 4;  ///< The same at its front and its end, which is what services leave readable.

/// How many characters at the beginning of `text` stand in `form`, as far as they give something away.
qsizetype shownAt(QStringView text, QStringView form)
{
    qsizetype longest = 0;
    for (qsizetype at = 0; at < form.size(); ++at) {
        const QStringView part = form.sliced(at);
        const auto common =
            std::ranges::mismatch(text, part, [](QChar a, QChar b) { return a.toCaseFolded() == b.toCaseFolded(); })
                .in1 -
            text.begin();
        const bool isEnd = at == 0 || common == part.size();
        if (common >= std::min(isEnd ? shortestEnd : shortestPart, form.size()))
            longest = std::max<qsizetype>(longest, common);
    }
    return longest;
}

} // namespace

QString hide(const QString &text, const QString &key)
{
    const QString secret = key.trimmed();
    if (secret.isEmpty())
        return text;
    const QByteArray bytes = secret.toUtf8();
    const QList<QString> forms = {secret, QString::fromLatin1(QUrl::toPercentEncoding(secret)),
                                  QString::fromLatin1(bytes.toBase64(QByteArray::OmitTrailingEquals)),
                                  QString::fromLatin1(bytes.toHex())};
    QString result;
    bool isHiding = false;
    for (qsizetype at = 0; at < text.size();) {
        qsizetype shown = 0;
        for (const QString &form : forms)
            shown = std::max(shown, shownAt(QStringView(text).sliced(at), form));
        if (shown == 0)
            result += text[at];
        else if (!isHiding)
            result += u"[已隐藏]"_s;
        isHiding = shown > 0;
        at += std::max<qsizetype>(shown, 1);
    }
    return result;
}

} // namespace Redaction
