#include "ai/speech/MediaFiles.h"

#include <QFile>
#include <QMimeDatabase>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QString packaged(const QString &name)
{
    QFile file(QStringLiteral(LINTORA_PACKAGING "/") + name);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace

TEST(MediaFiles, are_known_by_their_extension_in_any_case)
{
    for (const auto &name : {u"/a/访谈.mov"_s, u"B-CAM.MXF"_s, u"a.b.M4a"_s})
        EXPECT_TRUE(MediaFiles::isMedia(name)) << name.toStdString();
    for (const auto &name : {u"a.srt"_s, u"mov"_s, u"a.mov/clip"_s, u"a.mov.txt"_s, u""_s})
        EXPECT_FALSE(MediaFiles::isMedia(name)) << name.toStdString();
}

TEST(MediaFiles, are_what_the_system_is_told_that_the_program_opens)
{
    const QString bundle = packaged(u"macos/Info.plist.in"_s);
    const QStringList entry = packaged(u"linux/local.lintora.workflow.desktop"_s).split(u'\n').filter(u"MimeType="_s);
    ASSERT_EQ(entry.size(), 1);
    const QStringList types = entry.first().sliced(9).split(u';');
    for (const QString &extension : MediaFiles::extensions()) {
        EXPECT_TRUE(bundle.contains(u"<string>%1</string>"_s.arg(extension))) << extension.toStdString();
        const QMimeType type = QMimeDatabase().mimeTypeForFile(u"a."_s + extension, QMimeDatabase::MatchExtension);
        const QStringList names = QStringList{type.name()} + type.aliases();
        // What the system has no type for has one of ours.
        if (packaged(u"linux/local.lintora.workflow.xml"_s).contains(u"\"*.%1\""_s.arg(extension)))
            continue;
        EXPECT_TRUE(std::ranges::any_of(names, [&](const QString &name) { return types.contains(name); }))
            << extension.toStdString() << " is " << names.join(u' ').toStdString();
    }
}
