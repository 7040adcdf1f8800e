#include "core/CueEditing.h"

#include "core/ConversionError.h"
#include "core/text/Characters.h"
#include "core/text/LineJoining.h"

#include <QStringList>

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

namespace CueEditing {

namespace {

constexpr qint64 usualLength = 2'000; // milliseconds; long enough to read a short line
constexpr qint64 leastRoom = 500;     // below it nobody could read anything
constexpr qint64 crowdedLength = 1'000;

const QString &placeholder()
{
    static const QString text = u"新字幕"_s;
    return text;
}

qint64 weight(QStringView text)
{
    qint64 characters = 0;
    for (Characters::Cursor at(text); at.next();)
        characters += Characters::isSpace(*Characters::Scalars(at.character()).begin()) ? 0 : 1;
    return characters;
}

} // namespace

QString tidied(const QString &text, qint64 number)
{
    QStringList lines;
    QString line;
    const auto finishLine = [&] {
        if (const QStringView kept = Characters::trimmed(line); !kept.isEmpty())
            lines += kept.toString();
        line.clear();
    };
    for (const char32_t scalar : Characters::Scalars(text)) {
        if (Characters::isNewline(scalar))
            finishLine();
        else
            line += QStringView(QChar::fromUcs4(scalar));
    }
    finishLine();
    if (lines.isEmpty())
        throw ConversionError(u"字幕文字不能为空；不需要的字幕请删除。"_s);
    QString result = lines.join(u'\n');
    if (!Characters::isWritable(result))
        throw ConversionError::aboutCue(number, u" 条字幕含无效控制字符。");
    return result;
}

QList<Subtitle> settingText(QList<Subtitle> items, qsizetype index, const QString &text)
{
    QString kept = tidied(text, index + 1);
    items[index].text = std::move(kept);
    return items;
}

void checkTimes(qint64 startMS, qint64 endMS)
{
    if (startMS < 0 || endMS > latest)
        throw ConversionError(u"时间须在 0 到 100 小时之间。"_s);
    if (startMS >= endMS)
        throw ConversionError(u"结束时间须晚于开始时间。"_s);
}

QList<Subtitle> settingTimes(QList<Subtitle> items, qsizetype index, qint64 startMS, qint64 endMS)
{
    checkTimes(startMS, endMS);
    items[index].start = startMS;
    items[index].end = endMS;
    return items;
}

QList<Subtitle> inserting(QList<Subtitle> items, qsizetype after)
{
    // A record may hold times that nobody could have typed.
    const qint64 start = after < 0 ? 0 : std::max<qint64>(0, items[after].end);
    if (start > latest - usualLength)
        throw ConversionError(u"时间须在 0 到 100 小时之间。"_s);
    qint64 length = usualLength;
    if (after + 1 < items.size()) {
        const qint64 next = items[after + 1].start;
        length = next < start + leastRoom ? crowdedLength : std::min(next - start, usualLength);
    }
    items.insert(after + 1, {.id = nextID(items), .start = start, .end = start + length, .text = placeholder()});
    return items;
}

QList<Subtitle> placing(QList<Subtitle> items, QList<Subtitle> cues)
{
    qint64 id = nextID(items);
    for (qsizetype i = 0; i < cues.size(); ++i) {
        const Subtitle cue = cues[i];
        cues = settingText(settingTimes(std::move(cues), i, cue.start, cue.end), i, cue.text);
    }
    std::ranges::stable_sort(cues, {}, &Subtitle::start);
    for (Subtitle &cue : cues)
        cue.id = id++;
    if (!std::ranges::is_sorted(items, {}, &Subtitle::start)) {
        for (const Subtitle &cue : cues)
            items.insert(positionFor(items, cue.start), cue);
        return items;
    }
    const qsizetype middle = items.size();
    items += cues;
    std::ranges::inplace_merge(items, items.begin() + middle, {}, &Subtitle::start);
    return items;
}

QList<Subtitle> removing(QList<Subtitle> items, QList<qsizetype> indices)
{
    std::sort(indices.begin(), indices.end());
    auto unwanted = indices.cbegin();
    qsizetype index = 0;
    items.removeIf([&](const Subtitle & /*cue*/) {
        const bool goes = unwanted != indices.cend() && *unwanted == index;
        while (unwanted != indices.cend() && *unwanted == index)
            ++unwanted;
        ++index;
        return goes;
    });
    return items;
}

QList<Subtitle> splitting(QList<Subtitle> items, qsizetype index, qsizetype position)
{
    const Subtitle cue = items[index];
    const QStringView text = cue.text;
    const QStringView head = Characters::trimmed(text.first(position));
    const QStringView tail = Characters::trimmed(text.sliced(position));
    const qint64 headWeight = weight(head);
    const qint64 tailWeight = weight(tail);
    if (headWeight == 0 || tailWeight == 0)
        throw ConversionError(u"请把光标放在要拆分的文字之间。"_s);
    if (!Characters::isBoundary(text, position) || !Characters::isWritable(head) || !Characters::isWritable(tail))
        throw ConversionError(u"这里是一个字的中间，不能拆分。"_s);
    qint64 length = 0;
    if (__builtin_sub_overflow(cue.end, cue.start, &length) || length > latest)
        throw ConversionError(u"时间须在 0 到 100 小时之间。"_s);
    const qint64 whole = headWeight + tailWeight;
    if (length < 2)
        throw ConversionError(u"字幕时间太短，不能拆分。"_s);
    const qint64 cut = cue.start + std::clamp<qint64>((length * headWeight + whole / 2) / whole, 1, length - 1);
    Subtitle second{.id = nextID(items), .start = cut, .end = cue.end, .text = tail.toString()};
    items[index].end = cut;
    items[index].text = head.toString();
    items.insert(index + 1, std::move(second));
    return items;
}

QList<Subtitle> joining(QList<Subtitle> items, qsizetype index)
{
    if (index + 1 >= items.size())
        throw ConversionError(u"后面没有可合并的字幕。"_s);
    const Subtitle next = items.takeAt(index + 1);
    Subtitle &cue = items[index];
    cue.start = std::min(cue.start, next.start);
    cue.end = std::max(cue.end, next.end);
    cue.text = LineJoining::joined(cue.text, next.text);
    return items;
}

qsizetype positionFor(const QList<Subtitle> &items, qint64 startMS)
{
    // Lists need not be in order; behind the last one that starts no later keeps the order that there is.
    const auto place =
        std::find_if(items.crbegin(), items.crend(), [&](const Subtitle &cue) { return cue.start <= startMS; });
    return std::distance(place, items.crend());
}

qint64 nextID(const QList<Subtitle> &items)
{
    qint64 highest = 0;
    for (const Subtitle &cue : items)
        highest = std::max(highest, cue.id);
    // A record may hold the largest number there is; a list of cues never holds all of the others.
    if (highest == std::numeric_limits<qint64>::max()) {
        highest = 0;
        while (std::any_of(items.begin(), items.end(), [&](const Subtitle &cue) { return cue.id == highest + 1; }))
            ++highest;
    }
    return highest + 1;
}

} // namespace CueEditing
