#include "ai/models/LocalModels.h"

#include "ai/LocalAIJob.h"
#include "ai/models/FileDigest.h"
#include "core/ByteCount.h"
#include "core/Cancelled.h"
#include "core/ConversionError.h"
#include "core/PlatformError.h"
#include "tests/ai/models/TestModel.h"
#include "tests/support/Unprivileged.h"

#include <QDir>
#include <QFileInfo>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

template <class Step>
QString refusal(Step &&step)
{
    try {
        step();
    } catch (const ConversionError &error) {
        return error.message();
    }
    return {};
}

} // namespace

TEST(ByteCount, reads_as_people_write_sizes)
{
    const std::pair<qint64, const char *> rows[] = {
        {0, "0 字节"},
        {1'023, "1,023 字节"},
        {1'024, "1 KB"},
        {1'536, "2 KB"},
        {1'047'552, "1,023 KB"},
        {1'048'063, "1,023 KB"},
        {1'048'064, "1 MB"},
        {147'951'465, "141.1 MB"},
        {1'073'741'823, "1 GB"},
        {1'215'191'254, "1.13 GB"},
        {2'497'280'256, "2.33 GB"},
    };
    for (const auto &[bytes, text] : rows)
        EXPECT_EQ(ByteCount::text(bytes), QString::fromUtf8(text)) << bytes;
}

TEST(LocalModels, an_unknown_speech_model_is_the_recommended_one)
{
    EXPECT_EQ(LocalModels::speechModel(u"base"_s).filename, u"ggml-base.bin"_s);
    EXPECT_EQ(LocalModels::speechModel(u"gone"_s).title, u"Whisper Turbo · 推荐"_s);
    EXPECT_EQ(LocalModels::speechModel({}), LocalModels::speech());
    EXPECT_EQ(LocalModels::speech().url(QUrl(u"https://mirror.test/models"_s)).toString(),
              u"https://mirror.test/models/ggerganov/whisper.cpp/resolve/5359861c739e955e79d9a303bcbc70fb988958b1/"
              "ggml-large-v3-turbo-q5_0.bin"_s);
    for (const LocalModel &model : LocalModels::speechModels() + QList{LocalModels::translation()}) {
        EXPECT_EQ(model.sha256.size(), 64);
        EXPECT_EQ(model.revision.size(), 40);
    }
}

TEST(LocalModels, a_download_needs_room_for_the_file_twice_and_64_MiB)
{
    const LocalModel &model = LocalModels::speech();
    EXPECT_EQ(refusal([&] { LocalModels::checkDownloadSpace(model, 1'215'191'254); }), QString());
    EXPECT_EQ(refusal([&] { LocalModels::checkDownloadSpace(model, 1'215'191'253); }),
              u"磁盘空间不足。下载并校验此模型需要至少 1.13 GB 可用空间。"_s);
    EXPECT_EQ(refusal([&] { LocalModels::checkDownloadSpace(model, std::nullopt); }),
              u"无法读取可用磁盘空间，请检查模型文件夹。"_s);
    EXPECT_GT(LocalModels::availableSpace(QDir::tempPath() + u"/not/yet/there"_s).value_or(0), 0);
}

TEST(LocalModels, the_status_line_follows_the_file)
{
    const TestModel test(1'500'000);
    const QString file = test.model.file();
    EXPECT_EQ(test.model.statusLabel(), u"尚未下载 · 1.4 MB"_s);
    TestModel::write(file, test.content.chopped(1));
    EXPECT_EQ(test.model.statusLabel(), u"文件不完整 · 请重新下载"_s);
    EXPECT_EQ(refusal([&] { LocalModels::verify(file, test.model); }), u"模型下载不完整，请重新下载。"_s);
    TestModel::write(file, test.content);
    EXPECT_EQ(test.model.statusLabel(), u"已下载 · 使用前校验"_s);
    LocalModels::verify(file, test.model);
    EXPECT_EQ(test.model.statusLabel(), u"已校验 · 可离线使用"_s);
    QFile touched(file);
    ASSERT_TRUE(touched.open(QIODevice::ReadWrite));
    ASSERT_TRUE(touched.setFileTime(QDateTime::currentDateTime().addSecs(-60), QFileDevice::FileModificationTime));
    EXPECT_EQ(test.model.statusLabel(), u"已下载 · 使用前校验"_s);
    LocalModel other = test.model;
    other.sha256 = QString(64, u'0');
    EXPECT_EQ(refusal([&] { LocalModels::verify(file, other); }), u"模型校验未通过，请重新下载。"_s);
    EXPECT_FALSE(LocalModels::isVerified(file, other));
}

TEST(LocalModels, hashing_ends_when_it_is_cancelled)
{
    const TestModel test;
    TestModel::write(test.model.file(), test.content);
    LocalAIJob job;
    job.cancel();
    EXPECT_THROW(LocalModels::verify(test.model.file(), test.model, &job), Cancelled);
    EXPECT_THROW(FileDigest::sha256(test.model.file(), &job), Cancelled);
    EXPECT_THROW(FileDigest::sha256(test.folder.path()), PlatformError);
}

TEST(LocalModels, a_file_from_elsewhere_is_copied_into_place_or_the_old_one_stays)
{
    const TestModel test;
    const QTemporaryDir elsewhere;
    const QString file = elsewhere.filePath(u"came.bin"_s);
    TestModel::write(file, test.content);
    TestModel::write(test.model.file(), "old");
    LocalAIJob job;
    LocalModel wrong = test.model;
    wrong.sha256 = QString(64, u'0');
    EXPECT_EQ(refusal([&] { LocalModels::installDownload(file, wrong, job); }), u"模型校验未通过，请重新下载。"_s);
    EXPECT_EQ(TestModel::read(test.model.file()), "old");
    LocalModels::installDownload(file, test.model, job);
    EXPECT_TRUE(TestModel::read(test.model.file()) == test.content);
    EXPECT_TRUE(LocalModels::isVerified(test.model.file(), test.model));
    EXPECT_TRUE(QFileInfo::exists(file));
    LocalModel folder = test.model;
    folder.filename = u"folder"_s;
    QDir(test.folder.path()).mkdir(folder.filename);
    EXPECT_EQ(refusal([&] { LocalModels::installDownload(file, folder, job); }),
              u"无法保存模型，原模型已保留。请检查文件夹权限。"_s);
    EXPECT_EQ(QDir(test.folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              (QStringList{u"folder"_s, u"test.bin"_s}));
}
