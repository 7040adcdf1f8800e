#include "ai/LocalAIJob.h"
#include "ai/Workspace.h"
#include "cli/CancelOnInterrupt.h"
#include "cli/Commands.h"
#include "cli/ProgressLines.h"
#include "cli/ProjectAudio.h"
#include "cli/Result.h"
#include "core/PlatformError.h"
#include "fcp/render/FCPAudioRenderer.h"

#include <QFile>

#include <memory>

namespace Commands {

namespace {

struct RenderArguments
{
    std::string project;
    ProjectAudio audio;
    Arguments::Output output;
};

/// Hands on the file as it stands, block by block: three hours are 350 MB.
void copy(const QString &path, Utf8Writer &out)
{
    constexpr qint64 blockSize = 256 * 1024;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw PlatformError::aboutFile(path, file.errorString());
    while (!file.atEnd()) {
        const QByteArray block = file.read(blockSize);
        if (block.isEmpty())
            throw PlatformError::aboutFile(path, file.errorString());
        out.bytes(block);
    }
}

void runRender(const RenderArguments &arguments)
{
    const FCPAudioPlan plan = arguments.audio.plan(arguments.project);
    ProjectAudio::tellNotices(plan, arguments.output);
    Workspace::removeLeftovers();
    LocalAIJob job;
    const CancelOnInterrupt cancelling(job);
    ProgressLines lines(arguments.output);
    const Workspace workspace;
    const QString wav =
        FCPAudioRenderer::render(plan, job, workspace.path(), [&](const Progress &progress) { lines.show(progress); });
    Result::write(arguments.output, [&](Utf8Writer &out) { copy(wav, out); });
}

} // namespace

void addRender(CLI::App &app, Work &run)
{
    auto *const command = app.add_subcommand("render", "把项目的时间线音频合成为一个 16 kHz 单声道 WAV");
    const auto arguments = std::make_shared<RenderArguments>();
    Arguments::addProject(*command, arguments->project, "项目或片段");
    arguments->output.addPath(*command);
    arguments->audio.addSwitches(*command);
    arguments->output.addProgress(*command);
    command->footer("示例：\n  lintora-cli render 粗剪.fcpxmld -o 粗剪.wav");
    command->callback([&run, arguments] { run = [arguments] { runRender(*arguments); }; });
}

} // namespace Commands
