#include "cli/Commands.h"
#include "cli/ProjectAudio.h"
#include "cli/Result.h"

#include <QFileInfo>

#include <cmath>
#include <memory>

using namespace Qt::StringLiterals;

namespace Commands {

namespace {

struct PlanArguments
{
    std::string input;
    ProjectAudio audio;
    Arguments::Output output;
};

QString seconds(double value)
{
    return QString::number(value, 'f', 3);
}

QString decibels(double gain)
{
    return gain > 0 ? QString::number(20 * std::log10(gain), 'f', 1) + u" dB"_s : u"静音"_s;
}

QString line(const FCPAudioSegment &segment)
{
    return u"  %1  %2 秒  %3 自 %4 秒  %5\n"_s.arg(seconds(segment.offset), 10)
        .arg(seconds(segment.duration), 10)
        .arg(QFileInfo(segment.url.toLocalFile()).fileName(), seconds(segment.fileStart), decibels(segment.gain));
}

QString summary(const FCPAudioPlan &plan)
{
    QString text = u"名称：%1\n时长：%2 秒\n"_s.arg(plan.name, seconds(plan.duration));
    if (plan.settings)
        text += u"帧率：%1\n画面：%2 × %3\n"_s.arg(plan.settings->rate.label)
                    .arg(plan.settings->width)
                    .arg(plan.settings->height);
    if (plan.hasAudioEffects)
        text += u"音频特效不参与，按原始音轨识别。\n"_s;
    if (const auto notice = plan.retimeNotice())
        text += u"已跳过 %1\n"_s.arg(*notice);
    if (const auto notice = plan.unreadableNotice())
        text += u"已跳过 %1\n"_s.arg(*notice);
    text += u"音频片段：%1\n"_s.arg(plan.segments.size());
    for (const FCPAudioSegment &segment : plan.segments)
        text += line(segment);
    return text;
}

void runPlan(const PlanArguments &arguments)
{
    const FCPAudioPlan plan = arguments.audio.plan(arguments.input);
    Result::deliver(
        arguments.output, [&](Utf8Writer &out) { out.text(summary(plan)); },
        [&](JsonWriter &json) { writeAudioPlan(json, plan); });
}

} // namespace

void addPlan(CLI::App &app, Work &run)
{
    auto *const command = app.add_subcommand("plan", "列出项目或片段的时间线音频：哪个文件的哪一段在何处发声");
    const auto arguments = std::make_shared<PlanArguments>();
    Arguments::addProject(*command, arguments->input, "项目或片段");
    arguments->audio.addSwitches(*command);
    arguments->output.addPath(*command);
    arguments->output.addJson(*command);
    arguments->output.addProgress(*command);
    command->footer("示例：\n  lintora-cli plan 粗剪.fcpxmld --json");
    command->callback([&run, arguments] { run = [arguments] { runPlan(*arguments); }; });
}

} // namespace Commands
