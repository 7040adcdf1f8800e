#include "core/text/ChineseScript.h"

#include "core/PlatformError.h"
#include "core/text/Characters.h"

#include <QCoreApplication>
#include <QFile>

#include <SimpleConverter.hpp>

#include <algorithm>
#include <string>

using namespace Qt::StringLiterals;

namespace ChineseScript {

namespace {

/// Han that either script may write otherwise. Nothing else is ever converted.
bool holdsHan(QStringView text)
{
    const Characters::Scalars scalars(text);
    return std::any_of(scalars.begin(), scalars.end(), [](char32_t scalar) {
        return Characters::isCommonIdeograph(scalar) || Characters::script(scalar) == QChar::Script_Han;
    });
}

/// The length of the name that stands at the front of `text`, 0 when there is none. The longest names come first.
qsizetype nameLength(QStringView text, const QStringList &names)
{
    for (const QString &name : names) {
        if (text.startsWith(name))
            return name.size();
    }
    return 0;
}

QStringList byLength(QStringList names)
{
    names.removeAll(QString());
    std::stable_sort(names.begin(), names.end(),
                     [](const QString &a, const QString &b) { return a.size() > b.size(); });
    return names;
}

/// The dictionaries of a conversion: those in the application's bundle, or what the library finds where it was
/// installed.
std::string conversion(const QString &name)
{
    const QString own = QCoreApplication::applicationDirPath() + u"/../Resources/opencc/"_s + name;
    return (QFile::exists(own) ? QFile::encodeName(own) : name.toLatin1()).toStdString();
}

const opencc::SimpleConverter &converter(Target to)
{
    try {
        if (to == Target::simplified) {
            static const opencc::SimpleConverter simplifier(conversion(u"t2s.json"_s));
            return simplifier;
        }
        static const opencc::SimpleConverter traditionalizer(conversion(u"s2t.json"_s));
        return traditionalizer;
    } catch (const std::exception &error) {
        throw PlatformError(u"繁简转换词典无法读取：%1"_s.arg(QString::fromUtf8(error.what())));
    }
}

/// Converts many short texts in few calls, for each call has a price: texts go in as lines of one block, and lines come
/// out.
class Block
{
public:
    explicit Block(Target to)
        : m_converter(converter(to))
    {}

    /// A text without line feeds.
    void add(QStringView line)
    {
        m_bytes += line.toUtf8();
        m_bytes += '\n';
    }

    qsizetype bytes() const { return m_bytes.size(); }

    /// The texts added since the last call, converted; each is read with next.
    void convert()
    {
        const std::string lines = m_converter.Convert(m_bytes.constData(), static_cast<size_t>(m_bytes.size()));
        m_converted = QString::fromStdString(lines);
        m_at = 0;
        m_bytes.truncate(0);
    }

    QStringView next()
    {
        const qsizetype feed = m_converted.indexOf(u'\n', m_at);
        Q_ASSERT(feed >= 0);
        const QStringView line = QStringView(m_converted).sliced(m_at, feed - m_at);
        m_at = feed + 1;
        return line;
    }

private:
    const opencc::SimpleConverter &m_converter;
    QByteArray m_bytes;
    QString m_converted;
    qsizetype m_at = 0;
};

/// Calls `piece` for every stretch of `text` that is to be converted, and `kept` for all between.
template <class Piece, class Kept>
void divide(QStringView text, const QStringList &names, Piece &&piece, Kept &&kept)
{
    qsizetype begin = 0;
    const auto flush = [&](qsizetype end) {
        if (end > begin)
            piece(text.sliced(begin, end - begin));
    };
    for (qsizetype i = 0; i < text.size();) {
        const qsizetype length = text[i] == u'\n' ? 1 : nameLength(text.sliced(i), names);
        if (length == 0) {
            ++i;
            continue;
        }
        flush(i);
        kept(text.sliced(i, length));
        begin = i += length;
    }
    flush(text.size());
}

} // namespace

QList<Subtitle> converted(const QList<Subtitle> &items, Target to, const QStringList &kept,
                          const std::function<void()> &check)
{
    // Some two milliseconds of work.
    constexpr qsizetype blockBytes = 32'768;
    const QStringList names = byLength(kept);
    Block block(to);
    QList<Subtitle> result = items;
    QString text;
    for (qsizetype first = 0; first < items.size();) {
        check();
        qsizetype end = first;
        for (; end < items.size() && block.bytes() < blockBytes; ++end) {
            if (holdsHan(items[end].text))
                divide(
                    items[end].text, names, [&](QStringView piece) { block.add(piece); }, [](QStringView) {});
        }
        block.convert();
        for (; first < end; ++first) {
            if (!holdsHan(items[first].text))
                continue;
            text.truncate(0);
            divide(
                items[first].text, names, [&](QStringView) { text += block.next(); },
                [&](QStringView name) { text += name; });
            // A text that stays is shared with the list that came in.
            if (text != items[first].text)
                result[first].text = text;
        }
    }
    return result;
}

} // namespace ChineseScript
