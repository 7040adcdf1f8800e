#include "fcp/FCPXML.h"

#include "core/files/FileReader.h"
#include "fcp/titles/SubtitleTransfer.h"

#include <QFile>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QList<Subtitle> cues{{.id = 1, .start = 0, .end = 1'980, .text = u"你好，\n<世界> & \"引号\""_s},
                           {.id = 2, .start = 1'980, .end = 3'003, .text = u"第二条\t😀"_s}};

QString reference(const QString &name)
{
    return QStringLiteral(LINTORA_REFERENCE) + u'/' + name;
}

/// Compares with the file of that name to the byte. On a difference what was received is left beside it.
void expectReference(const QString &name, const QByteArray &received)
{
    const QString expected = reference(name);
    if (QFile::exists(expected) && FileReader::readAll(expected) == received)
        return;
    QFile file(expected + u".received"_s);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(received);
    ADD_FAILURE() << "differs from " << expected.toStdString() << ": see " << file.fileName().toStdString();
}

Options styled()
{
    Options options;
    options.rate = FrameRate::all()[3];
    options.strokeEnabled = true;
    options.shadowEnabled = true;
    return options;
}

} // namespace

TEST(ReferenceDocument, standalone)
{
    expectReference(u"standalone.fcpxml"_s, FCPXML::convert(cues, std::nullopt, styled()).toUtf8());
}

TEST(ReferenceDocument, clip)
{
    expectReference(u"clip.fcpxml"_s, SubtitleTransfer::clip(cues, styled()));
}

TEST(ReferenceDocument, project)
{
    XmlDocument base = FCPXML::document(FileReader::readAll(reference(u"base.fcpxml"_s)), u"/media"_s);
    const Options options = FCPXML::settings({}, base);
    expectReference(u"project.fcpxml"_s, FCPXML::convert(cues, std::move(base), options).toUtf8());
}
