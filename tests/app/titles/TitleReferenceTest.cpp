#include "app/titles/TitlePicture.h"

#include "tests/support/ReferenceImage.h"

#include <QFontDatabase>
#include <QLinearGradient>
#include <QPainter>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QString family = u"Noto Sans CJK SC"_s;

struct Case
{
    QString name;
    QString text;
    TitleBackdrop::Kind backdrop;
    TitlePicture::Guides guides;
    qint64 width;
    qint64 height;
    double fontSize;
    bool stroke;
    bool shadow;
    QString fontColor = u"1 1 1 1"_s;
    QString face = u"Regular"_s;
};

Options optionsOf(const Case &row)
{
    Options options;
    options.font = family;
    options.fontFace = row.face;
    options.width = row.width;
    options.height = row.height;
    options.fontSize = row.fontSize;
    options.fontColor = row.fontColor;
    options.strokeEnabled = row.stroke;
    options.strokeWidth = row.fontSize / 18;
    options.shadowEnabled = row.shadow;
    options.shadowBlur = 10;
    return options;
}

QImage sunset()
{
    QImage still(640, 480, QImage::Format_RGB32);
    QLinearGradient sky(0, 0, 0, 480);
    sky.setStops({{0, QColor(32, 54, 110)}, {0.6, QColor(240, 150, 90)}, {1, QColor(250, 225, 160)}});
    QPainter(&still).fillRect(still.rect(), sky);
    return still;
}

QList<Case> cases()
{
    using Kind = TitleBackdrop::Kind;
    using TitlePicture::Guides;
    return {
        {u"plain"_s, u"大家好，欢迎回来"_s, Kind::black, Guides::none, 3840, 2160, 120, false, false},
        {u"stroke"_s, u"今天我们聊聊 Final Cut Pro 调色"_s, Kind::white, Guides::none, 3840, 2160, 120, true, false},
        {u"shadow"_s, u"两行字幕居中\nThe last baseline stands at 10 %"_s, Kind::still, Guides::safeAreas, 3840, 2160,
         120, false, true},
        {u"stroke-shadow"_s, u"描边与阴影"_s, Kind::greys, Guides::none, 3840, 2160, 200, true, true, u"1 0.85 0.2 1"_s,
         u"Bold"_s},
        {u"half-transparent"_s, u"半透明的字"_s, Kind::greys, Guides::none, 3840, 2160, 200, true, false,
         u"1 1 1 0.5"_s},
        {u"portrait"_s, u"竖屏视频里的「长字幕」会在安全宽度内换行，一次不落"_s, Kind::black, Guides::safeAreas, 1080,
         1920, 80, true, true},
        {u"square"_s, u"方形画面"_s, Kind::transparent, Guides::none, 1080, 1080, 90, true, true, u"0.9 0.2 0.2 1"_s},
    };
}

} // namespace

TEST(TitleReference, looks_as_it_did_when_someone_looked_at_it)
{
    if (!QFontDatabase::hasFamily(family))
        GTEST_SKIP() << "needs the font " << family.toStdString() << " (package fonts-noto-cjk)";
    for (const Case &row : cases()) {
        const TitleBackdrop backdrop{.kind = row.backdrop,
                                     .still = row.backdrop == TitleBackdrop::Kind::still ? sunset() : QImage()};
        const QImage picture = TitlePicture::draw(row.text, optionsOf(row), QSize(640, 480), backdrop, row.guides);
        EXPECT_TRUE(ReferenceImage::matches(
            picture, QStringLiteral(LINTORA_STYLE_REFERENCE).append(u"/%1.png"_s.arg(row.name))));
    }
}
