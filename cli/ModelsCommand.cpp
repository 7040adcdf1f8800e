#include "ai/LocalAIJob.h"
#include "ai/models/LocalModelDownload.h"
#include "ai/models/LocalModels.h"
#include "ai/models/PartialDownload.h"
#include "cli/CancelOnInterrupt.h"
#include "cli/Commands.h"
#include "cli/Result.h"
#include "core/ByteCount.h"

#include <QFileInfo>

#include <memory>

using namespace Qt::StringLiterals;

namespace Commands {

namespace {

struct ModelsArguments
{
    std::string id;
    std::vector<std::string> hosts;
    bool remove = false;
    Arguments::Output output;
};

const CLI::Validator knownModel(
    [](const std::string &id) {
        const QList<LocalModel> models = LocalModels::catalog();
        const bool known =
            std::ranges::any_of(models, [&](const LocalModel &model) { return model.id == Arguments::toText(id); });
        return known ? std::string() : "没有这个模型：" + id;
    },
    "");

const CLI::Validator modelHost(
    [](const std::string &address) {
        return LocalModels::host(Arguments::toText(address)) ? std::string() : "需要 https 或 http 地址：" + address;
    },
    "");

LocalModel chosen(const ModelsArguments &arguments)
{
    const QList<LocalModel> models = LocalModels::catalog();
    return *std::ranges::find_if(models,
                                 [&](const LocalModel &model) { return model.id == Arguments::toText(arguments.id); });
}

void show(const QList<LocalModel> &models, const Arguments::Output &output)
{
    QString summary;
    for (const LocalModel &model : models)
        summary += u"%1  %2  %3\n"_s.arg(model.id, -11).arg(model.title, model.statusLabel());
    Result::deliver(
        output, [&](Utf8Writer &out) { out.text(summary); },
        [&](JsonWriter &json) {
            json.beginArray();
            for (const LocalModel &model : models) {
                json.beginObject();
                json.key("bytes").integer(model.bytes);
                json.key("file").text(model.file());
                json.key("id").text(model.id);
                json.key("ready").boolean(model.ready());
                json.key("status").text(model.statusLabel());
                json.key("title").text(model.title);
                json.key("verified").boolean(LocalModels::isVerified(model.file(), model));
                json.endObject();
            }
            json.endArray();
        });
}

void list(const ModelsArguments &arguments)
{
    show(LocalModels::catalog(), arguments.output);
}

void download(const ModelsArguments &arguments)
{
    QList<QUrl> hosts;
    for (const std::string &host : arguments.hosts)
        hosts.append(*LocalModels::host(Arguments::toText(host)));
    const LocalModel model = chosen(arguments);
    LocalAIJob job;
    {
        const CancelOnInterrupt interrupt(job);
        LocalModelDownload(model, hosts, job, [&](const Progress &progress) {
            arguments.output.report(progress.what);
        }).download();
    }
    show({model}, arguments.output);
}

void verify(const ModelsArguments &arguments)
{
    const LocalModel model = chosen(arguments);
    arguments.output.report(u"正在校验模型…"_s);
    LocalAIJob job;
    {
        const CancelOnInterrupt interrupt(job);
        LocalModels::verify(model.file(), model, &job);
    }
    show({model}, arguments.output);
}

/// What the partial file belongs to; a model that the catalog no longer knows has no title.
LocalModel whole(const PartialDownload::Kept &kept)
{
    const QList<LocalModel> models = LocalModels::catalog();
    const auto found =
        std::ranges::find_if(models, [&](const LocalModel &model) { return model.sha256 == kept.sha256; });
    return found != models.end() ? *found : LocalModel();
}

void showPartials(const ModelsArguments &arguments)
{
    const QList<PartialDownload::Kept> partials = PartialDownload::all();
    QString summary;
    for (const PartialDownload::Kept &kept : partials)
        summary += u"%1  %2  %3\n"_s.arg(whole(kept).id, -11).arg(ByteCount::text(kept.bytes), kept.path);
    if (partials.isEmpty())
        summary = u"没有未完成的下载\n"_s;
    if (arguments.remove)
        std::ranges::for_each(partials, PartialDownload::remove);
    Result::deliver(
        arguments.output, [&](Utf8Writer &out) { out.text(summary); },
        [&](JsonWriter &json) {
            json.beginArray();
            for (const PartialDownload::Kept &kept : partials) {
                json.beginObject();
                json.key("bytes").integer(kept.bytes);
                json.key("file").text(kept.path);
                json.key("id").text(whole(kept).id);
                json.key("title").text(whole(kept).title);
                json.endObject();
            }
            json.endArray();
        });
}

} // namespace

void addModels(CLI::App &app, Work &run)
{
    auto *const command = app.add_subcommand("models", "显示、下载或校验识别与翻译用的本地模型");
    const auto arguments = std::make_shared<ModelsArguments>();
    // Options may stand before and after the name of the action.
    command->fallthrough();
    command->require_subcommand(0, 1);
    arguments->output.addPath(*command);
    arguments->output.addJson(*command);
    arguments->output.addProgress(*command);

    const auto action = [&](const char *name, const char *description, void (*work)(const ModelsArguments &)) {
        auto *const added = command->add_subcommand(name, description);
        added->group("命令")->get_option("--help")->description("显示帮助");
        added->final_callback([&run, arguments, work] { run = [arguments, work] { work(*arguments); }; });
        return added;
    };
    const auto addID = [&](CLI::App *added) {
        added->add_option("id", arguments->id, "模型编号，见 models list")
            ->required()
            ->type_name("ID")
            ->check(knownModel);
    };
    action("list", "显示全部模型及其状态", list);
    auto *const downloading = action("download", "下载并校验模型；中断后从停下的地方继续", download);
    addID(downloading);
    downloading
        ->add_option("--host", arguments->hosts, "模型来源地址，可写多个，前面的不可用时用后面的；内容以校验为准")
        ->type_name("URL")
        ->check(modelHost)
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    addID(action("verify", "校验已下载的模型", verify));
    action("partial", "列出未完成的下载及其大小", showPartials)
        ->add_flag("--remove", arguments->remove, "删除未完成的下载");
    command->footer("示例：\n"
                    "  lintora-cli models\n"
                    "  lintora-cli models download base\n"
                    "  lintora-cli models download speech --host https://镜像地址/");
    command->parse_complete_callback([&run, arguments] { run = [arguments] { list(*arguments); }; });
}

} // namespace Commands
