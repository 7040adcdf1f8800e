#include "core/text/LineJoining.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(LineJoining, leaves_a_blank_where_the_writing_has_them)
{
    struct Row
    {
        QString first;
        QString second;
        QString joined;
    };
    for (const Row &row : {
             Row{u"大家好"_s, u"再见"_s, u"大家好再见"_s},
             {u"聊 color"_s, u"再见"_s, u"聊 color 再见"_s},
             {u"Hello,"_s, u"world"_s, u"Hello, world"_s},
             {u"你好，"_s, u"world"_s, u"你好，world"_s},
             {u"OK"_s, u"「好」"_s, u"OK「好」"_s},
             {u"他说……"_s, u"再见"_s, u"他说……再见"_s},
             {u"Wait…"_s, u"what"_s, u"Wait… what"_s},
             {u"テスト"_s, u"です"_s, u"テストです"_s},
             {u"스타일"_s, u"안녕"_s, u"스타일 안녕"_s},
             {u"\U00020000"_s, u"好"_s, u"\U00020000好"_s},
             {QString(), u"好"_s, u"好"_s},
         })
        EXPECT_EQ(LineJoining::joined(row.first, row.second), row.joined) << row.joined.toStdString();
}

TEST(LineJoining, lets_each_language_go_on_in_its_own_line)
{
    struct Row
    {
        QString first;
        QString second;
        QString joined;
    };
    for (const Row &row : {
             Row{u"你好\nHello"_s, u"世界\nworld"_s, u"你好世界\nHello world"_s},
             {u"你好\nHello"_s, u"world\n世界"_s, u"你好世界\nHello world"_s},
             {u"你好\nHello"_s, u"world"_s, u"你好\nHello world"_s},
             {u"你好"_s, u"世界\nworld"_s, u"你好世界\nworld"_s},
             {u"你好"_s, u"world"_s, u"你好 world"_s},
             {u"今天\n我们"_s, u"去\n公园"_s, u"今天\n我们去\n公园"_s},
             {u"那是\n2024"_s, u"年了"_s, u"那是\n2024 年了"_s},
         })
        EXPECT_EQ(LineJoining::joined(row.first, row.second), row.joined) << row.joined.toStdString();
}
