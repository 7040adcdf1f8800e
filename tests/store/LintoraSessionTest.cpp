#include "store/LintoraSession.h"

#include "core/Cancelled.h"
#include "core/ConversionError.h"
#include "core/PlatformError.h"
#include "tests/support/Generator.h"
#include "tests/support/Sessions.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

const QByteArray optionsJson =
    R"({"bottomPercent":10,"font":"PingFang SC","fontColor":"1 1 1 1","fontSize":48,"height":2160,"name":"字幕",)"
    R"("rate":{"denominator":1,"label":"30","numerator":30},"shadowBlur":4,"shadowColor":"0 0 0 0.65",)"
    R"("shadowEnabled":false,"shiftMS":0,"strokeColor":"0 0 0 1","strokeEnabled":false,"strokeWidth":2,"width":3840})";

const QByteArray smallestJson = R"({"cleaned":false,"items":[],"options":)" + optionsJson +
                                R"(,"removeFillers":false,"removePunctuation":false,"schema":2,"source":""})";

const QByteArray trackJson = R"({"cleaned":true,"id":"0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F0","items":[],"label":"中文",)"
                             R"("options":)" +
                             optionsJson + R"(,"removeFillers":true,"removePunctuation":false})";

/// smallestJson with `field` put in at its front.
QByteArray withField(const QByteArray &field)
{
    return "{" + field + "," + smallestJson.sliced(1);
}

QByteArray replaced(QByteArray json, const QByteArray &before, const QByteArray &after)
{
    EXPECT_TRUE(json.contains(before)) << before.constData();
    return json.replace(before, after);
}

/// "accepted", or the message that decode refuses with.
std::string outcome(const QByteArray &data)
{
    try {
        LintoraSession::decode(data);
        return "accepted";
    } catch (const ConversionError &error) {
        return error.message().toStdString();
    } catch (const PlatformError &error) {
        return "platform: " + error.description().toStdString();
    }
}

} // namespace

TEST(LintoraSession, is_compact_JSON_with_sorted_keys_and_without_absent_fields)
{
    EXPECT_EQ(LintoraSession().encoded().toStdString(), smallestJson.toStdString());
    LintoraSession session;
    session.tracks = {{.id = QUuid(u"0f1e2d3c-4b5a-6978-8796-a5b4c3d2e1f0"_s),
                       .label = u"中文"_s,
                       .removeFillers = true,
                       .cleaned = true}};
    session.selectedTrackID = session.tracks->first().id;
    session.previousItems = {{.id = 1, .start = 0, .end = 9'007'199'254'740'993, .text = u"a/\"\n\u0001"_s}};
    const QByteArray expected =
        R"({"cleaned":false,"items":[],"options":)" + optionsJson +
        R"(,"previousItems":[{"end":9007199254740993,"id":1,"start":0,"text":"a/\"\n\u0001"}],"removeFillers":false,)"
        R"("removePunctuation":false,"schema":2,"selectedTrackID":"0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F0","source":"",)"
        R"("tracks":[)" +
        trackJson + "]}";
    EXPECT_EQ(session.encoded().toStdString(), expected.toStdString());
}

TEST(LintoraSession, every_field_survives)
{
    const LintoraSession session = Sessions::full();
    EXPECT_EQ(LintoraSession::decode(session.encoded()), session);
    EXPECT_EQ(session.encoded(), LintoraSession::decode(session.encoded()).encoded());
}

TEST(LintoraSession, remembers_where_cues_came_from_in_a_field_that_others_pass_over)
{
    const TextOrigin origin{.cue = 3, .number = 17, .text = u"原话\n二"_s};
    LintoraSession session;
    session.tracks = {{.id = QUuid(u"0f1e2d3c-4b5a-6978-8796-a5b4c3d2e1f0"_s),
                       .label = u"中文"_s,
                       .removeFillers = true,
                       .cleaned = true,
                       .origins = {origin}}};
    session.selectedTrackID = session.tracks->first().id;
    const QByteArray written = session.encoded();
    EXPECT_EQ(LintoraSession::decode(written), session);
    // A reader that knows nothing of the field finds all the rest as it was.
    const QByteArray field = R"("origins":[{"cue":3,"number":17,"text":"原话\n二"}],)";
    const QByteArray without = replaced(written, field, "");
    EXPECT_TRUE(without.contains(trackJson));
    EXPECT_EQ(LintoraSession::decode(without).tracks->first().origins, QList<TextOrigin>());
    EXPECT_EQ(outcome(replaced(written, field, R"("origins":null,)")), "accepted");
    EXPECT_NE(outcome(replaced(written, R"("number":17)", R"("number":"17")")), "accepted");
}

TEST(LintoraSession, keeps_the_look_of_a_title_in_fields_that_others_pass_over)
{
    LintoraSession session;
    session.look = TitleTemplate{.effects = {{.name = "片头", .uid = "~/a.moti", .src = {}}},
                                 .xml = "<title ref=\"0\"><text><text-style/></text></title>"};
    session.tracks = {{.id = QUuid(u"0f1e2d3c-4b5a-6978-8796-a5b4c3d2e1f0"_s), .look = session.look}};
    const QByteArray written = session.encoded();
    EXPECT_EQ(LintoraSession::decode(written), session);
    const qsizetype begin = written.indexOf(R"("look":)");
    const QByteArray field = written.sliced(begin, written.indexOf(R"("options":)") - begin);
    EXPECT_EQ(written.count(field), 2) << "of the track, and of the session as it is edited";
    session.look.reset();
    session.tracks->first().look.reset();
    EXPECT_EQ(replaced(written, field, ""), session.encoded());
    EXPECT_EQ(outcome(replaced(written, field, R"("look":null,)")), "accepted");
    EXPECT_NE(outcome(replaced(written, "text-style/>", "text-style/><text-style/>")), "accepted");
}

TEST(LintoraSession, any_job_survives)
{
    Generator generator(3);
    for (int round = 0; round < 50; ++round) {
        LintoraSession session = Sessions::full();
        session.items = generator.cues(generator.number(0, 40));
        session.options.fontSize = double(generator.number(1, 1'000'000)) / double(generator.number(1, 1'000'000));
        session.options.shiftMS = generator.number(std::numeric_limits<qint64>::min() + 1, -1);
        (*session.tracks)[0].items = generator.cues(generator.number(0, 40));
        if (generator.chance(50))
            session.tracks.reset();
        if (generator.chance(50))
            session.splitOriginal.reset();
        ASSERT_EQ(LintoraSession::decode(session.encoded()), session) << "round " << round;
    }
}

TEST(LintoraSession, accepts)
{
    const QByteArray uuid = R"("0f1e2d3c-4B5A-6978-8796-a5b4c3d2e1f0")";
    for (const auto &[name, data] : {
             std::pair<const char *, QByteArray>{"schema 2", smallestJson},
             {"schema 1", replaced(smallestJson, R"("schema":2)", R"("schema":1)")},
             {"byte order mark", "\xEF\xBB\xBF" + smallestJson},
             {"white space", " \r\n" + smallestJson + "\n"},
             {"unknown field", withField(R"("later":{"a":[1,{"b":null}]})")},
             {"null optional fields",
              withField(R"("tracks":null,"previousItems":null,"selectedTrackID":null,"splitOriginal":null)")},
             {"UUID in either case", withField(R"("selectedTrackID":)" + uuid)},
             {"track without previous items", withField(R"("tracks":[)" + trackJson + "]")},
             {"null previous items of a track",
              withField(R"("tracks":[)" + replaced(trackJson, R"("label")", R"("previousItems":null,"label")") + "]")},
             {"whole number as a double", replaced(smallestJson, R"("fontSize":48)", R"("fontSize":48.0)")},
         })
        EXPECT_EQ(outcome(data), "accepted") << name;
}

TEST(LintoraSession, refuses)
{
    const auto refusal = [](const char *detail) { return std::string("platform: 数据无法读取：") + detail; };
    const auto looseUuid = [&](const QByteArray &text) { return withField(R"("splitOriginal":")" + text + '"'); };
    const std::string noUuid = refusal("“splitOriginal”应为 UUID。");
    for (const auto &[name, data, message] : {
             std::tuple<const char *, QByteArray, std::string>{
                 "schema 3", replaced(smallestJson, R"("schema":2)", R"("schema":3)"), "字幕会话版本不支持。"},
             {"schema 0", replaced(smallestJson, R"("schema":2)", R"("schema":0)"), "字幕会话版本不支持。"},
             {"wrong type before wrong schema",
              replaced(replaced(smallestJson, R"("schema":2)", R"("schema":3)"), R"("source":"")", R"("source":1)"),
              refusal("“source”应为文字。")},
             {"missing field", replaced(smallestJson, R"("cleaned":false,)", ""), refusal("缺少“cleaned”。")},
             {"null for a required field", replaced(smallestJson, R"("items":[])", R"("items":null)"),
              refusal("“items”应为数组。")},
             {"1 for true", replaced(smallestJson, R"("cleaned":false)", R"("cleaned":1)"),
              refusal("“cleaned”应为布尔值。")},
             {"fraction for an integer", replaced(smallestJson, R"("height":2160)", R"("height":1.5)"),
              refusal("“options.height”应为64 位整数。")},
             {"integer over 64 bits", replaced(smallestJson, R"("height":2160)", R"("height":9223372036854775808)"),
              refusal("“options.height”应为64 位整数。")},
             {"number over a double", replaced(smallestJson, R"("fontSize":48)", R"("fontSize":1e999)"),
              refusal("“options.fontSize”应为数字。")},
             {"cue of an unfinished kind", replaced(smallestJson, R"("items":[])", R"("items":[{"id":1}])"),
              refusal("缺少“items[0].start”。")},
             {"key twice", withField(R"("cleaned":false)"), refusal("“cleaned”重复。")},
             {"key twice among many", replaced(smallestJson, R"("width")", R"("font":"a","width")"),
              refusal("“options.font”重复。")},
             {"key twice by escapes", withField(R"("cle\u0061ned":false)"), refusal("“cleaned”重复。")},
             {"UUID with braces", looseUuid("{0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F0}"), noUuid},
             {"UUID without dashes", looseUuid("0F1E2D3C4B5A69788796A5B4C3D2E1F0"), noUuid},
             {"UUID with more behind it", looseUuid("0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F00"), noUuid},
             {"UUID of other digits", looseUuid("0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1FG"), noUuid},
             {"no UUID", looseUuid(""), noUuid},
             {"no object", "[]", refusal("最外层应为对象。")},
             {"more behind the record", smallestJson + "{}", refusal("第 422 字节处的 JSON 格式有误。")},
             {"cut off", smallestJson.chopped(1), refusal("第 421 字节处的 JSON 格式有误。")},
             {"invalid UTF-8", replaced(smallestJson, R"("source":"")", "\"source\":\"\xC0\x80\""),
              refusal("不是有效的 UTF-8。")},
             {"lone surrogate", replaced(smallestJson, R"("source":"")", R"("source":"\ud83d")"),
              refusal("第 426 字节处的 JSON 格式有误。")},
             {"deep nesting", withField(R"("later":)" + QByteArray(65, '[') + QByteArray(65, ']')),
              refusal("嵌套过深。")},
         })
        EXPECT_EQ(outcome(data), message) << name;
}

TEST(LintoraSession, takes_16_MiB_and_not_a_byte_more)
{
    constexpr qsizetype limit = 16'777'216;
    const auto padded = [](qsizetype size) { return smallestJson + QByteArray(size - smallestJson.size(), ' '); };
    EXPECT_EQ(outcome(padded(limit)), "accepted");
    EXPECT_EQ(outcome(padded(limit + 1)), "字幕会话过大。");
    EXPECT_EQ(outcome(QByteArray(limit + 1, '[')), "字幕会话过大。") << "the size is looked at before the JSON";
}

TEST(LintoraSession, large_hostile_data_ends_in_an_error)
{
    constexpr qsizetype limit = 16'777'216;
    EXPECT_EQ(outcome(QByteArray(limit, '[')), "platform: 数据无法读取：最外层应为对象。");
    EXPECT_EQ(outcome(QByteArray("{\"a\":").repeated(limit / 5)), "platform: 数据无法读取：嵌套过深。");
    QByteArray keys = "{";
    for (int i = 0; keys.size() < limit - 20; ++i)
        keys += '"' + QByteArray::number(i) + "\":0,";
    EXPECT_EQ(outcome(keys + "\"0\":1}"), "platform: 数据无法读取：缺少“schema”。");
    EXPECT_EQ(outcome(withField("\"a\":" + QByteArray(limit / 2, '9'))), "accepted") << "a field that nobody reads";
}

TEST(LintoraSession, can_be_given_up_wherever_its_reading_is)
{
    QByteArray strange = "{";
    for (int i = 0; i < 20'000; ++i)
        strange += '"' + QByteArray::number(i) + "\":0,";
    const std::tuple<const char *, QByteArray, int> rows[] = {
        // At least an ask for a thousand keys and cues, or for a thousand comparisons of keys.
        {"many cues", LintoraSession{.items = Generator(1).cues(5'000)}.encoded(), 24},
        {"keys that nobody knows", strange + smallestJson.mid(1), 20 + 200},
    };
    for (const auto &[name, data, least] : rows) {
        SCOPED_TRACE(name);
        int asked = 0;
        LintoraSession::decode(data, [&] { ++asked; });
        EXPECT_GE(asked, least);
        for (const int last : {1, asked / 2, asked}) {
            int asks = 0;
            EXPECT_THROW(LintoraSession::decode(data,
                                                [&] {
                                                    if (++asks == last)
                                                        throw Cancelled();
                                                }),
                         Cancelled);
            EXPECT_EQ(asks, last);
        }
    }
}

TEST(LintoraSession, what_JSON_cannot_hold_is_not_written)
{
    LintoraSession session;
    session.options.strokeWidth = std::numeric_limits<double>::infinity();
    EXPECT_THROW(session.encoded(), PlatformError);
}
