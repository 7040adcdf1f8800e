#include "core/text/checks/CheckLimits.h"

#include "core/json/JsonReader.h"
#include "core/json/JsonWriter.h"

using namespace Qt::StringLiterals;

namespace {

/// Words that are often written in either way within one job.
QList<QStringList> commonTerms()
{
    return {{u"账号"_s, u"帐号"_s}, {u"账户"_s, u"帐户"_s}, {u"其他"_s, u"其它"_s}, {u"图像"_s, u"图象"_s},
            {u"录像"_s, u"录象"_s}, {u"影像"_s, u"影象"_s}, {u"想象"_s, u"想像"_s}, {u"像素"_s, u"象素"_s},
            {u"阈值"_s, u"阀值"_s}, {u"唯一"_s, u"惟一"_s}, {u"好像"_s, u"好象"_s}, {u"按钮"_s, u"按纽"_s}};
}

qint64 readWithin(JsonReader &json, qint64 lowest, qint64 highest)
{
    const qint64 value = json.readInteger();
    if (value < lowest || value > highest)
        json.refuse(u"%1 到 %2 的整数"_s.arg(lowest).arg(highest));
    return value;
}

double readColumns(JsonReader &json)
{
    const double value = json.readNumber();
    if (!(value >= 1 && value <= 1'000))
        json.refuse(u"1 到 1000 的数"_s);
    return value;
}

CheckRule readRule(JsonReader &json)
{
    const auto rule = CheckRules::named(json.readText());
    if (!rule)
        json.refuse(u"规则名"_s);
    return *rule;
}

QStringList readTerm(JsonReader &json)
{
    QStringList ways;
    json.readArray([&] {
        ways += json.readText();
        if (ways.back().isEmpty())
            json.refuse(u"不为空的文字"_s);
    });
    return ways;
}

void write(JsonWriter &json, const CheckLimits &limits)
{
    json.beginObject();
    json.key("chinesePerSecond").integer(limits.speed.chinese);
    json.key("columns").number(limits.columns);
    json.key("doubledWithinMS").integer(limits.doubledWithinMS);
    json.key("latinPerSecond").integer(limits.speed.latin);
    json.key("lines").integer(limits.lines);
    json.key("longestMS").integer(limits.longestMS);
    json.key("name").text(limits.name);
    json.key("off").beginArray();
    for (const CheckRule rule : limits.off)
        json.text(CheckRules::name(rule));
    json.endArray();
    json.key("shortestMS").integer(limits.shortestMS);
    json.key("smallestGapFrames").integer(limits.smallestGapFrames);
    json.key("terms").beginArray();
    for (const QStringList &ways : limits.terms) {
        json.beginArray();
        for (const QString &way : ways)
            json.text(way);
        json.endArray();
    }
    json.endArray();
    json.endObject();
}

} // namespace

const QList<CheckLimits> &CheckLimits::builtIn()
{
    static const QList<CheckLimits> sets = [] {
        CheckLimits chinese;
        chinese.name = u"chinese"_s;
        chinese.terms = commonTerms();
        CheckLimits english;
        english.name = u"english"_s;
        // 42 letters a line, and 20 frames of film at the least.
        english.columns = 21;
        english.shortestMS = 833;
        return QList{chinese, english};
    }();
    return sets;
}

CheckLimits CheckLimits::read(const QByteArray &document)
{
    JsonReader json(document);
    constexpr qint64 longTime = 3'600'000;
    CheckLimits limits = CheckLimits::builtIn().front();
    limits.name.clear();
    json.readObject({}, [&](QByteArrayView key) {
        if (key == "name")
            limits.name = json.readText();
        else if (key == "chinesePerSecond")
            limits.speed.chinese = readWithin(json, 1, 1'000);
        else if (key == "latinPerSecond")
            limits.speed.latin = readWithin(json, 1, 1'000);
        else if (key == "shortestMS")
            limits.shortestMS = readWithin(json, 0, longTime);
        else if (key == "longestMS")
            limits.longestMS = readWithin(json, 1, longTime);
        else if (key == "smallestGapFrames")
            limits.smallestGapFrames = readWithin(json, 0, 1'000);
        else if (key == "columns")
            limits.columns = readColumns(json);
        else if (key == "lines")
            limits.lines = readWithin(json, 1, 100);
        else if (key == "doubledWithinMS")
            limits.doubledWithinMS = readWithin(json, 0, longTime);
        else if (key == "off")
            json.readArray([&] { limits.off.insert(readRule(json)); });
        else if (key == "terms") {
            limits.terms.clear();
            json.readArray([&] { limits.terms += readTerm(json); });
        } else
            json.refuse(u"已知的限值"_s);
    });
    json.finish();
    return limits;
}

QByteArray CheckLimits::written() const
{
    return jsonBytes([this](JsonWriter &json) { write(json, *this); });
}
