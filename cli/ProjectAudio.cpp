#include "cli/ProjectAudio.h"

#include "cli/StandardStreams.h"
#include "fcp/FCPXML.h"
#include "fcp/render/MissingMedia.h"

using namespace Qt::StringLiterals;

namespace {

/// There is no folder in which the files of dragged data could lie, and what is too large is refused in the plan's own
/// words.
QByteArray readDraggedData()
{
    return StandardStreams::readUpTo(FCPXML::largestFile).value_or(QByteArray(FCPXML::largestFile + 1, ' '));
}

} // namespace

void ProjectAudio::addSwitches(CLI::App &command)
{
    command.add_flag("--without-missing", withoutMissing, "不要找不到的媒体文件，只处理其余的音频");
    command.add_flag("--skip-unreadable", skipUnreadable, "不要无法准确定位的片段，只处理其余的音频");
}

FCPAudioPlan ProjectAudio::plan(const std::string &input) const
{
    const UnreadableClips unreadable = skipUnreadable ? UnreadableClips::leaveOut : UnreadableClips::refuse;
    const FCPAudioPlan plan = input == "-" ? FCPAudioPlan::parse(readDraggedData(), unreadable)
                                           : FCPAudioPlan::parse(Arguments::readProject(input), unreadable);
    return withoutMissing ? MissingMedia::leaveOut(plan) : plan;
}

void ProjectAudio::tellNotices(const FCPAudioPlan &plan, const Arguments::Output &output)
{
    if (output.quiet)
        return;
    if (plan.hasAudioEffects)
        StandardStreams::writeError("音频特效不参与，按原始音轨识别。");
    if (const auto notice = plan.retimeNotice())
        StandardStreams::writeError((u"已跳过 "_s + *notice).toUtf8());
    if (const auto notice = plan.unreadableNotice())
        StandardStreams::writeError((u"已跳过 "_s + *notice).toUtf8());
}

bool ProjectAudio::isProject(const std::string &input)
{
    QString name = Arguments::toPath(input);
    while (name.endsWith(u'/'))
        name.chop(1);
    return name.endsWith(u".fcpxml"_s, Qt::CaseInsensitive) || name.endsWith(u".fcpxmld"_s, Qt::CaseInsensitive);
}
