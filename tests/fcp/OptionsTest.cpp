#include "fcp/Options.h"

#include "core/PlatformError.h"
#include "core/json/JsonReader.h"
#include "core/json/JsonWriter.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QByteArray write(const Options &options)
{
    return jsonBytes([&](JsonWriter &json) { writeOptions(json, options); });
}

Options read(const QByteArray &bytes)
{
    JsonReader json(bytes);
    Options options = readOptions(json);
    json.finish();
    return options;
}

std::string refusal(const QByteArray &bytes)
{
    try {
        read(bytes);
        return "accepted";
    } catch (const PlatformError &error) {
        return error.description().toStdString();
    }
}

} // namespace

TEST(Options, the_defaults_as_a_record)
{
    EXPECT_EQ(
        write(Options()),
        QByteArray(R"({"bottomPercent":10,"font":"PingFang SC","fontColor":"1 1 1 1","fontSize":48,"height":2160,)"
                   R"("name":"字幕","rate":{"denominator":1,"label":"30","numerator":30},"shadowBlur":4,)"
                   R"("shadowColor":"0 0 0 0.65","shadowEnabled":false,"shiftMS":0,"strokeColor":"0 0 0 1",)"
                   R"("strokeEnabled":false,"strokeWidth":2,"width":3840})"));
}

TEST(Options, come_back_from_json_unchanged)
{
    Options options;
    options.rate = FrameRate::all()[0];
    options.fontSize = 42.666666666666664;
    options.shiftMS = std::numeric_limits<qint64>::min();
    options.width = 9'007'199'254'740'993;
    options.strokeEnabled = true;
    options.titleRole = u"titles.English"_s;
    options.fontFace = u""_s;
    EXPECT_EQ(read(write(options)), options);
    EXPECT_EQ(read(write(Options())), Options());
}

TEST(Options, absent_and_null_say_the_same)
{
    QByteArray bytes = write(Options());
    bytes.replace(R"("name")", R"("titleRole":null,"fontFace":null,"later":[1,{}],"name")");
    EXPECT_EQ(read(bytes), Options());
}

TEST(Options, a_record_of_another_shape_is_refused_by_name)
{
    const QByteArray good = write(Options());
    const auto with = [&](const char *from, const char *to) {
        QByteArray bytes = good;
        EXPECT_TRUE(bytes.contains(from));
        return refusal(bytes.replace(from, to));
    };
    EXPECT_EQ(with(R"("numerator":30)", R"("other":30)"), "数据无法读取：缺少“rate.numerator”。");
    EXPECT_EQ(with(R"("width":3840)", R"("width":3840.5)"), "数据无法读取：“width”应为64 位整数。");
    EXPECT_EQ(with(R"("fontSize":48)", R"("fontSize":"48")"), "数据无法读取：“fontSize”应为数字。");
    EXPECT_EQ(with(R"("fontSize":48)", R"("fontSize":1e999)"), "数据无法读取：“fontSize”应为数字。");
    EXPECT_EQ(with(R"("strokeEnabled":false)", R"("strokeEnabled":0)"), "数据无法读取：“strokeEnabled”应为布尔值。");
    EXPECT_EQ(with(R"("name":"字幕")", R"("name":null)"), "数据无法读取：“name”应为文字。");
    EXPECT_EQ(with(R"("name":"字幕")", R"("name":"a","name":"b")"), "数据无法读取：“name”重复。");
}
