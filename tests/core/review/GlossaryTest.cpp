#include "core/review/Glossary.h"

#include "core/ConversionError.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(Glossary, reads_what_it_writes_and_what_spreadsheets_write)
{
    const QList<GlossaryTerm> terms{{.term = u"调色"_s, .rendering = u"color grading"_s, .note = u"不是 \"toning\""_s},
                                    {.term = u"一级, 二级"_s, .rendering = u"primary,\nsecondary"_s}};
    EXPECT_EQ(Glossary::fromCSV(Glossary::toCSV(terms)), terms);
    const QList<GlossaryTerm> plain{{.term = u"调色"_s, .rendering = u"grading"_s},
                                    {.term = u"LUT"_s, .rendering = u"查找表"_s, .note = u"缩写"_s}};
    for (const QString &text :
         {u"\uFEFF术语,译法\r\n调色,grading\r\n\r\nLUT,查找表,缩写\r\n"_s,
          u" 调色 , grading,\nLUT,\"查找表\",缩写\nlut,查表"_s, u"调色,grading\rLUT,查找表,缩写"_s})
        EXPECT_EQ(Glossary::fromCSV(text), plain) << text.toStdString();
}

TEST(Glossary, refuses_what_it_cannot_keep_and_names_the_line)
{
    const QString ok = u"调色,grading\n"_s;
    const auto sentence = [](const QString &text) {
        try {
            Glossary::fromCSV(text);
        } catch (const ConversionError &error) {
            return QString::fromUtf8(error.what());
        }
        return QString();
    };
    const QString second = u"术语表第 2 行有误，每行应为：术语,译法,备注。"_s;
    for (const QString &line : {u"只有术语"_s, u",译法"_s, u"a,b,c,d"_s, u"\"没有结尾"_s, u"\"a\"b,c"_s, u"a,\u0007"_s})
        EXPECT_EQ(sentence(ok + line), second) << line.toStdString();
    EXPECT_EQ(sentence(u"\"两\n行\",x\n坏"_s), u"术语表第 3 行有误，每行应为：术语,译法,备注。"_s);
    const QString limits = u"术语表最多 1000 条，每项不超过 200 字。"_s;
    EXPECT_EQ(sentence(QString(200, u'长') + u",x"_s), QString());
    EXPECT_EQ(sentence(QString(201, u'长') + u",x"_s), limits);
    QString many;
    for (int i = 0; i < 1000; ++i)
        many += u"t%1,r\n"_s.arg(i);
    EXPECT_EQ(sentence(many), QString());
    EXPECT_EQ(sentence(many + u"another,r"_s), limits);
}

TEST(Glossary, finds_terms_in_both_directions_as_whole_words_and_tells_what_was_not_kept)
{
    const QList<GlossaryTerm> terms{{.term = u"调色"_s, .rendering = u"grading"_s},
                                    {.term = u"LUT"_s, .rendering = u"查找表"_s, .note = u"缩写"_s}};
    EXPECT_EQ(Glossary::applying(terms, u"今天聊调色和ｌｕｔ"_s), terms);
    EXPECT_TRUE(Glossary::applying(terms, u"the salute was absolute, regrading"_s).isEmpty());
    const QList<GlossaryTerm> turned{{.term = u"grading"_s, .rendering = u"调色"_s}};
    EXPECT_EQ(Glossary::applying(terms, u"Grading again"_s), turned);
    EXPECT_TRUE(Glossary::missing(terms, u"Grading again"_s, u"又在调色"_s).isEmpty());
    EXPECT_EQ(Glossary::missing(terms, u"Grading again"_s, u"又在校色"_s), turned);
    EXPECT_EQ(Glossary::missing(terms, u"套LUT"_s, u"apply a LUT"_s).size(), 1);
}
