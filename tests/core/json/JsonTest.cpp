#include "core/PlatformError.h"
#include "core/Subtitle.h"
#include "core/json/JsonReader.h"
#include "core/json/JsonWriter.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

/// What reading a value gives, or the refusal.
template <class Read>
std::string outcome(const QByteArray &document, Read &&read)
{
    try {
        JsonReader json(document);
        const auto value = read(json);
        json.finish();
        if constexpr (std::is_same_v<decltype(value), const QString>)
            return value.toStdString();
        else
            return std::to_string(value);
    } catch (const PlatformError &error) {
        return error.description().toStdString();
    }
}

std::string refusal(const QByteArray &document)
{
    try {
        JsonReader json(document);
        json.skip();
        json.finish();
        return "accepted";
    } catch (const PlatformError &error) {
        return error.description().toStdString();
    }
}

} // namespace

TEST(JsonReader, reads_integers_of_64_bits_and_nothing_else)
{
    const std::string notInteger = "数据无法读取：最外层应为64 位整数。";
    for (const auto &[document, expected] : {
             std::pair<QByteArray, std::string>{"9223372036854775807", "9223372036854775807"},
             {"-9223372036854775808", "-9223372036854775808"},
             {"9007199254740993", "9007199254740993"},
             {" -0 ", "0"},
             {"3.0", "3"},
             {"3e2", "300"},
             {"9223372036854775808", notInteger},
             {"9007199254740993.0", notInteger},
             {"1e-400", notInteger},
             {"0e-400", "0"},
             {"1.5", notInteger},
             {"1e300", notInteger},
             {"true", notInteger},
             {"\"1\"", notInteger},
             {"null", notInteger},
         })
        EXPECT_EQ(outcome(document, [](JsonReader &json) { return json.readInteger(); }), expected) << document.data();
}

TEST(JsonReader, reads_text_with_its_escapes)
{
    for (const auto &[document, expected] : {
             std::pair<QByteArray, std::string>{R"("")", ""},
             {R"("你好")", "你好"},
             {R"("\"\\\/\b\f\n\r\t")", "\"\\/\b\f\n\r\t"},
             {R"("\u4f60\uD83D\ude00")", "你😀"},
             {R"("a\u0000b")", std::string("a\0b", 3)},
         })
        EXPECT_EQ(outcome(document, [](JsonReader &json) { return json.readText(); }), expected) << document.data();
}

TEST(JsonReader, accepts_every_form_of_the_grammar)
{
    for (const QByteArray document : {"[]", "{}", " [ 1 , -0.5e+3 , true , false , null , \"x\" ] ", "\xEF\xBB\xBF{}",
                                      R"({"a":{"b":[[],{}]},"":0})"})
        EXPECT_EQ(refusal(document), "accepted") << document.data();
}

TEST(JsonReader, refuses_what_the_grammar_does_not_have)
{
    for (const QByteArray document : {"",
                                      "[",
                                      "]",
                                      "{",
                                      "[1,]",
                                      "[,1]",
                                      "{\"a\"}",
                                      "{\"a\":}",
                                      "{\"a\":1,}",
                                      "{a:1}",
                                      "01",
                                      "+1",
                                      "1.",
                                      ".5",
                                      "1e",
                                      "-",
                                      "nul",
                                      "truex",
                                      "\"",
                                      "\"\\x\"",
                                      "\"\\u12g4\"",
                                      "\"\\ud800\"",
                                      "\"\\ud800\\u0041\"",
                                      "\"\\udc00\"",
                                      "\"a\nb\"",
                                      "[1] 2",
                                      "{}{}",
                                      "'a'",
                                      "NaN",
                                      "[1 2]"})
        EXPECT_NE(refusal(document).find("数据无法读取：第 "), std::string::npos)
            << document.data() << refusal(document);
    EXPECT_EQ(refusal("\"\xFF\""), "数据无法读取：不是有效的 UTF-8。");
    EXPECT_EQ(refusal(R"({"a":{"b":1,"c":2,"b":3}})"), "数据无法读取：“a.b”重复。");
    EXPECT_EQ(refusal(QByteArray("[").repeated(JsonReader::maxDepth) + QByteArray("]").repeated(JsonReader::maxDepth)),
              "accepted");
    EXPECT_EQ(refusal(QByteArray("[").repeated(16'000'000)), "数据无法读取：嵌套过深。");
}

TEST(JsonReader, names_the_key_path)
{
    const auto read = [](const QByteArray &document) -> std::string {
        try {
            JsonReader json(document);
            json.readObject({"items"}, [&](QByteArrayView key) {
                if (key == "items")
                    readSubtitles(json);
            });
            json.finish();
            return "accepted";
        } catch (const PlatformError &error) {
            return error.description().toStdString();
        }
    };
    const QByteArray good = R"({"id":1,"start":0,"end":9,"text":"a","new":[{"x":null}]})";
    EXPECT_EQ(read("{\"items\":[" + good + "]}"), "accepted");
    EXPECT_EQ(read("{}"), "数据无法读取：缺少“items”。");
    EXPECT_EQ(read("[]"), "数据无法读取：最外层应为对象。");
    EXPECT_EQ(read("{\"items\":{}}"), "数据无法读取：“items”应为数组。");
    EXPECT_EQ(read("{\"items\":[" + good + R"(,{"id":1,"start":0,"end":9}]})"), "数据无法读取：缺少“items[1].text”。");
    EXPECT_EQ(read("{\"items\":[" + good + R"(,{"id":1,"start":"0","end":9,"text":""}]})"),
              "数据无法读取：“items[1].start”应为64 位整数。");
    EXPECT_EQ(read(R"({"items":[{"id":true,"start":0,"end":9,"text":""}]})"),
              "数据无法读取：“items[0].id”应为64 位整数。");
}

TEST(JsonWriter, writes_bytes_that_depend_on_the_values_alone)
{
    const QByteArray bytes = jsonBytes([](JsonWriter &json) {
        json.beginObject();
        json.key("array").beginArray();
        for (const double value : {48.0, 48.5, 0.1, -0.0, 1e5, 1e300, 42.666666666666664})
            json.number(value);
        json.endArray();
        json.key("bool").boolean(true);
        json.key("integer").integer(std::numeric_limits<qint64>::min());
        json.key("text").text(u"你\"\\/\n\t\r\u0001\u007F😀"_s);
        json.endObject();
    });
    EXPECT_EQ(bytes, QByteArray("{\"array\":[48,48.5,0.1,0,100000,1e+300,42.666666666666664],\"bool\":true,"
                                "\"integer\":-9223372036854775808,\"text\":\"你\\\"\\\\/\\n\\t\\r\\u0001\x7F😀\"}"));
}

TEST(Subtitle, comes_back_from_json_unchanged)
{
    const QList<Subtitle> cues{
        {.id = std::numeric_limits<qint64>::max(), .start = -1, .end = 5, .text = u"一\n\"二\"\u0001"_s}, {}};
    const QByteArray bytes = jsonBytes([&](JsonWriter &json) { writeSubtitles(json, cues); });
    JsonReader json(bytes);
    EXPECT_EQ(readSubtitles(json), cues);
    EXPECT_TRUE(bytes.startsWith("[{\"end\":5,\"id\":9223372036854775807,\"start\":-1,\"text\":"));
}
