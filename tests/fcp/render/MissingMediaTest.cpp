#include "fcp/render/MissingMedia.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class MissingFiles : public testing::Test
{
protected:
    void SetUp() override
    {
        QFile file(path(u"here.wav"_s));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }

    QString path(const QString &name) const { return folder.filePath(name); }

    FCPAudioPlan planOf(const QStringList &names) const
    {
        FCPAudioPlan plan{.name = u"Film"_s, .duration = 9};
        for (const QString &name : names)
            plan.segments.append({.url = QUrl::fromLocalFile(path(name)), .duration = 1});
        return plan;
    }

    QString refusal(const QStringList &names) const
    {
        try {
            MissingMedia::refuse(planOf(names));
            return {};
        } catch (const ConversionError &error) {
            EXPECT_EQ(error.message(), u"找不到片段原始音视频，请先在 FCP 重新连接媒体。"_s);
            return error.detail();
        }
    }

    QTemporaryDir folder;
};

} // namespace

TEST_F(MissingFiles, are_refused_together_and_the_first_is_named)
{
    EXPECT_EQ(refusal({u"here.wav"_s, u"here.wav"_s}), QString());
    EXPECT_EQ(refusal({u"here.wav"_s, u"b.mov"_s, u"b.mov"_s}), u"缺少文件："_s + path(u"b.mov"_s));
    EXPECT_EQ(refusal({u"here.wav"_s, u"b.mov"_s, u"a.mov"_s, u"b.mov"_s}),
              u"缺少 2 个文件，第一个是："_s + path(u"b.mov"_s));
    QDir(folder.path()).mkdir(u"c.mov"_s);
    EXPECT_EQ(refusal({u"c.mov"_s}), u"缺少文件："_s + path(u"c.mov"_s));
}

TEST_F(MissingFiles, can_be_left_out_and_the_rest_keeps_its_places)
{
    FCPAudioPlan plan = planOf({u"a.mov"_s, u"here.wav"_s});
    plan.segments[1].offset = 5;
    const FCPAudioPlan rest = MissingMedia::leaveOut(plan);
    ASSERT_EQ(rest.segments.size(), 1);
    EXPECT_EQ(rest.segments[0], plan.segments[1]);
    EXPECT_EQ(rest.duration, 9);
    EXPECT_THROW(MissingMedia::leaveOut(planOf({u"a.mov"_s})), NothingAudible);
}
