#include "cli/Commands.h"
#include "cli/Result.h"
#include "cli/StyleArguments.h"
#include "fcp/titles/NewDocument.h"
#include "store/StylePresetStore.h"

#include <functional>
#include <memory>

using namespace Qt::StringLiterals;

namespace Commands {

namespace {

struct PresetsArguments
{
    std::string name;
    StyleArguments style;
    Arguments::Output output;
};

QString summary(const QList<SubtitleStylePreset> &presets)
{
    QString text;
    for (const SubtitleStylePreset &preset : presets) {
        const Options &style = preset.style;
        if (preset.look) {
            text += u"%1：标题“%2”\n"_s.arg(preset.name, preset.look->name());
            continue;
        }
        text += u"%1：%2，%3 磅（%4 × %5）\n"_s.arg(preset.name, style.font, QString::number(style.fontSize),
                                                    QString::number(style.width), QString::number(style.height));
    }
    return presets.isEmpty() ? u"没有样式预设\n"_s : text;
}

void show(const QList<SubtitleStylePreset> &presets, const Arguments::Output &output)
{
    Result::deliver(
        output, [&](Utf8Writer &out) { out.text(summary(presets)); },
        [&](JsonWriter &json) { writeSubtitleStylePresets(json, presets); });
}

void list(const PresetsArguments &arguments)
{
    show(StylePresetStore().load(), arguments.output);
}

void add(const PresetsArguments &arguments)
{
    const StylePresetStore store;
    const Options style = arguments.style.applied(Options());
    // Kept so that every document can take it.
    const std::optional<TitleTemplate> look = arguments.style.look(NewDocument::minorVersion);
    const QList<SubtitleStylePreset> presets = store.update([&](const QList<SubtitleStylePreset> &before) {
        return SubtitleStylePresets::saving(before, Arguments::toText(arguments.name), style, look);
    });
    show(presets, arguments.output);
}

void remove(const PresetsArguments &arguments)
{
    const StylePresetStore store;
    const QList<SubtitleStylePreset> presets = store.update([&](const QList<SubtitleStylePreset> &before) {
        return SubtitleStylePresets::removing(before, Arguments::toText(arguments.name));
    });
    show(presets, arguments.output);
}

} // namespace

void addPresets(CLI::App &app, Work &run)
{
    auto *const command = app.add_subcommand("presets", "显示、添加或删除样式预设");
    const auto arguments = std::make_shared<PresetsArguments>();
    // Options may stand before and after the name of the action.
    command->fallthrough();
    command->require_subcommand(0, 1);
    arguments->output.addPath(*command);
    arguments->output.addJson(*command);
    arguments->output.addProgress(*command);

    const auto action = [&](const char *name, const char *description, void (*work)(const PresetsArguments &)) {
        auto *const added = command->add_subcommand(name, description);
        added->group("命令")->get_option("--help")->description("显示帮助");
        added->final_callback([&run, arguments, work] { run = [arguments, work] { work(*arguments); }; });
        return added;
    };
    action("list", "显示全部样式预设", list);
    auto *const adding = action("add", "把样式存为预设；同名预设被替换", add);
    adding->add_option("name", arguments->name, "预设名称，最多 60 个字")->required()->type_name("NAME");
    arguments->style.add(*adding);
    auto *const removing = action("remove", "删除预设", remove);
    removing->add_option("name", arguments->name, "预设名称")->required()->type_name("NAME");
    command->footer("示例：\n"
                    "  lintora-cli presets add 访谈 --font 思源黑体 --font-size 60 --stroke\n"
                    "  lintora-cli titles 访谈.srt -o 访谈.fcpxml --preset 访谈");
    command->parse_complete_callback([&run, arguments] { run = [arguments] { list(*arguments); }; });
}

} // namespace Commands
