#include "core/review/SuspectCues.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

SuspectCue::Reasons reasonsOf(const QString &text, qint64 lengthMS)
{
    const auto suspects = SuspectCues::find({{.id = 1, .start = 1000, .end = 1000 + lengthMS, .text = text}}, nullptr);
    return suspects.isEmpty() ? SuspectCue::Reasons() : suspects.first().reasons;
}

} // namespace

TEST(SuspectCues, marks_what_nobody_says_and_leaves_speech_alone)
{
    using Reason = SuspectCue::Reason;
    const struct
    {
        QString text;
        qint64 lengthMS;
        SuspectCue::Reasons reasons;
    } rows[] = {
        {u"今天我们聊聊调色"_s, 1000, {}},
        {u"不不不，你听我说"_s, 1500, {}},
        {u"很多人在片尾会打上感谢观看四个字，其实没有人会去看它到底写了些什么内容"_s, 9000, {}},
        {u"Thank you."_s, 600, {}},
        {u"好好好好"_s, 1000, Reason::repetition},
        {u"哒 哒 哒 哒 哒"_s, 2000, Reason::repetition},
        {u"I don't know, I don't know, I don't know, I don't know, I"_s, 4000, Reason::repetition},
        {u"谢谢观看！"_s, 2000, Reason::closingPhrase},
        {u"Thanks for watching!"_s, 2000, Reason::closingPhrase},
        {u"字幕由 志愿者 提供"_s, 2000, Reason::closingPhrase},
        {u"请不吝点赞 订阅 转发 打赏支持我们的栏目"_s, 3000, Reason::closingPhrase},
        {u"先把素材转换到时间线上"_s, 700, Reason::speed},
        {u"先把素材转换到时间线上"_s, 800, {}},
        {u"this is far too much text"_s, 400, Reason::speed},
    };
    for (const auto &row : rows)
        EXPECT_EQ(reasonsOf(row.text, row.lengthMS).toInt(), row.reasons.toInt())
            << row.text.toStdString() << ": " << SuspectCues::reason(reasonsOf(row.text, row.lengthMS)).toStdString();
}

TEST(SuspectCues, marks_a_line_said_three_times_running_and_what_lies_over_silence)
{
    QList<Subtitle> items;
    for (const QString &text : {u"对"_s, u"对。"_s, u"然后呢"_s, u"走吧"_s, u"走吧！"_s, u"走吧"_s})
        items.append({.id = 1, .start = items.size() * 1000, .end = items.size() * 1000 + 900, .text = text});
    const auto isSilent = [](qint64 startMS, qint64 endMS) { return startMS == 2000 && endMS == 2900; };
    const QList<SuspectCue> expected{{.index = 2, .reasons = SuspectCue::Reason::silence},
                                     {.index = 3, .reasons = SuspectCue::Reason::repetition},
                                     {.index = 4, .reasons = SuspectCue::Reason::repetition},
                                     {.index = 5, .reasons = SuspectCue::Reason::repetition}};
    EXPECT_EQ(SuspectCues::find(items, isSilent), expected);
}
