#include "core/files/Utf8.h"
#include "core/files/Utf8Writer.h"
#include "tests/support/Generator.h"

#include <QStringDecoder>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QByteArray randomBytes(Generator &generator)
{
    // Pieces of every length class and around every limit, cut and joined at random.
    static const QList<QByteArray> pieces{"plain ascii text",
                                          "\x7F",
                                          "\xC2\x80",
                                          "\xDF\xBF",
                                          "\xE0\xA0\x80",
                                          "\xE0\x9F\xBF",
                                          "\xED\x9F\xBF",
                                          "\xED\xA0\x80",
                                          "\xEE\x80\x80",
                                          "\xEF\xBB\xBF",
                                          "\xEF\xBF\xBF",
                                          "\xF0\x90\x80\x80",
                                          "\xF0\x8F\xBF\xBF",
                                          "\xF4\x8F\xBF\xBF",
                                          "\xF4\x90\x80\x80",
                                          "\xF5\x80\x80\x80",
                                          "\xC1\xBF",
                                          "\x80",
                                          "\xFF",
                                          "\xE4\xBD\xA0\xE5\xA5\xBD"};
    QByteArray bytes;
    for (qint64 count = generator.number(1, 6); count > 0; --count)
        bytes += generator.pick(pieces);
    if (generator.chance(30))
        bytes.chop(1);
    return bytes;
}

} // namespace

TEST(Utf8, survey_and_decode_agree_with_the_library)
{
    Generator generator(3);
    int validCount = 0;
    for (int i = 0; i < 50'000; ++i) {
        const QByteArray bytes = randomBytes(generator);
        const Utf8::Survey survey = Utf8::survey(bytes);
        ASSERT_EQ(survey.valid, QUtf8StringView(bytes).isValidUtf8()) << bytes.toHex().data();
        if (!survey.valid)
            continue;
        ++validCount;
        QStringDecoder decoder(QStringConverter::Utf8, QStringConverter::Flag::ConvertInitialBom);
        const QString text = decoder.decode(bytes);
        ASSERT_EQ(Utf8::decode(bytes), text) << bytes.toHex().data();
        ASSERT_EQ(survey.hasMark, text.contains(QChar(0xFEFF))) << bytes.toHex().data();
        QByteArray encoded(Utf8::encodedRoom(text.size()), '\0');
        encoded.truncate(Utf8::encode(text, encoded.data()) - encoded.constData());
        ASSERT_EQ(encoded, bytes);
    }
    EXPECT_GT(validCount, 5'000);
}

TEST(Utf8, white_space_is_what_a_string_trims)
{
    for (char32_t c = 0; c <= 0xFFFF; ++c) {
        if (QChar::isSurrogate(c))
            continue;
        const QString text = QString(QChar(c)) + u"x"_s + QChar(c);
        ASSERT_EQ(Utf8::decode(Utf8::trimmed(text.toUtf8())), text.trimmed()) << std::hex << uint(c);
    }
}

TEST(Utf8Writer, hands_on_every_byte_in_order)
{
    QByteArray received;
    int blocks = 0;
    Utf8Writer out([&](QByteArrayView block) {
        received.append(block);
        ++blocks;
    });
    QByteArray expected;
    const QString lone = u"a"_s + QChar(0xD800) + u"😀"_s;
    for (int i = 0; i < 40'000; ++i) {
        out.number(-i);
        out.text(lone);
        expected += QByteArray::number(-i) + "a\xEF\xBF\xBD\xF0\x9F\x98\x80";
    }
    const QByteArray large(1'000'000, 'x');
    out.bytes(large);
    out.number(std::numeric_limits<qint64>::min());
    expected += large + "-9223372036854775808";
    out.finish();
    EXPECT_EQ(received, expected);
    EXPECT_GT(blocks, 2);
}
