#include "core/Cancelled.h"
#include "core/SRT.h"
#include "core/files/Utf8Writer.h"
#include "fcp/FCPXML.h"
#include "fcp/audio/FCPAudioPlan.h"
#include "fcp/texts/ProjectTexts.h"
#include "fcp/titles/SubtitleTransfer.h"
#include "fcp/titles/WrittenTitles.h"
#include "fcp/validation/DocumentCheck.h"
#include "tests/support/Generator.h"
#include "tests/support/StoryDocument.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int cueCount = 5'000;

QByteArray longProject()
{
    QList<Tag> clips;
    for (int i = 0; i < cueCount; ++i)
        clips += tag("asset-clip ref=talk offset=" + QByteArray::number(i) + "s duration=1s");
    return StoryDocument::project("5000s", clips);
}

} // namespace

/// What takes long on large input asks again and again, so that a cancel is felt wherever it comes.
TEST(Check, is_asked_all_the_way_through_and_ends_what_asks)
{
    const QList<Subtitle> cues = Generator(1).cues(cueCount);
    const QByteArray srt = SRT::serialize(cues).toUtf8();
    const QByteArray project = longProject();
    const XmlDocument document = FCPXML::document(project, u"/"_s);
    const Options options;
    const TitleDocument titles = FCPXML::convert(cues, std::nullopt, options);
    const QByteArray written = titles.toUtf8();
    const XmlDocument titled = XmlDocument::parse(written, {});
    const auto tracks = ProjectTexts::read(titled, FCPXML::project(titled));
    struct Row
    {
        const char *name;
        int least; ///< Calls, one for each round of a thousand steps of each loop.
        std::function<void(const Check &)> run;
    };
    const Row rows[] = {
        {"reading SRT", 4, [&](const Check &check) { SRT::decode(srt, check); }},
        {"reading a project", 9, [&](const Check &check) { FCPXML::document(project, u"/"_s, check); }},
        {"planning its sound", 4,
         [&](const Check &check) { FCPAudioPlan::parse(document, UnreadableClips::refuse, check); }},
        {"checking it", 8, [&](const Check &check) { DocumentCheck::problems(project, check); }},
        {"reading titles", 8, [&](const Check &check) { ProjectTexts::read(titled, FCPXML::project(titled), check); }},
        {"numbering them", 39, [&](const Check &check) { ProjectTexts::origins(titled, tracks, check); }},
        {"making titles", 12, [&](const Check &check) { FCPXML::convert(cues, std::nullopt, options, {}, check); }},
        {"making a clip", 14, [&](const Check &check) { SubtitleTransfer::clip(cues, options, check); }},
        {"holding titles against cues", 30,
         [&](const Check &check) {
             WrittenTitles::verify(written, titles.marks(), {{.cues = cues, .options = options}}, {}, check);
         }},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        int calls = 0;
        try {
            row.run([&] { ++calls; });
        } catch (const ConversionError &) { // NOLINT(bugprone-empty-catch): 5,000 segments are too many, at the end
        }
        EXPECT_GE(calls, row.least);
        for (int last = 1; last <= calls; ++last) {
            int made = 0;
            const Check check = [&] {
                if (++made == last)
                    throw Cancelled();
            };
            EXPECT_THROW(row.run(check), Cancelled);
            EXPECT_EQ(made, last);
        }
    }
}
