#include "cli/Commands.h"
#include "cli/Interrupt.h"
#include "cli/Result.h"
#include "core/ConversionError.h"
#include "fcp/validation/DocumentCheck.h"

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;

namespace Commands {

namespace {

struct ValidateArguments
{
    std::string input;
    bool strict = false;
    Arguments::Output output;
};

bool isError(const Problem &problem)
{
    return problem.severity == Problem::Severity::error;
}

void writeProblem(JsonWriter &json, const Problem &problem)
{
    json.beginObject();
    json.key("element").text(problem.element);
    if (!problem.fix.isEmpty())
        json.key("fix").text(problem.fix);
    json.key("line").integer(problem.line);
    json.key("message").text(problem.message);
    json.key("rule").text(problem.rule);
    json.key("severity").text(isError(problem) ? u"error"_s : u"warning"_s);
    json.endObject();
}

void runValidate(const ValidateArguments &arguments)
{
    const QByteArray bytes = Arguments::readProjectBytes(arguments.input);
    const QList<Problem> problems = DocumentCheck::problems(bytes, Interrupt::check);
    Result::deliver(
        arguments.output,
        [&](Utf8Writer &out) {
            for (const Problem &problem : problems)
                out.text(problem.toText() + u'\n');
        },
        [&](JsonWriter &json) {
            json.beginArray();
            for (const Problem &problem : problems)
                writeProblem(json, problem);
            json.endArray();
        });
    const auto errors = std::ranges::count_if(problems, isError);
    const auto warnings = problems.size() - errors;
    if (errors > 0 || (arguments.strict && warnings > 0))
        throw ConversionError(u"文档有 %1 处错误、%2 处警告。"_s.arg(errors).arg(warnings));
    arguments.output.report(u"没有错误，%1 处警告"_s.arg(warnings));
}

} // namespace

void addValidate(CLI::App &app, Work &run)
{
    auto *const command = app.add_subcommand("validate", "检查 FCPXML 文档有什么问题、怎样修改");
    const auto arguments = std::make_shared<ValidateArguments>();
    command->add_option("file", arguments->input, "FCPXML 文件（.fcpxml 或 .fcpxmld），- 表示标准输入")
        ->required()
        ->type_name("FILE.fcpxml")
        ->check(Arguments::notEmpty);
    arguments->output.addPath(*command);
    command->add_flag("--strict", arguments->strict, "有警告时也以状态 1 结束");
    arguments->output.addJson(*command);
    arguments->output.addProgress(*command);
    command->footer("示例：\n  lintora-cli validate 成片.fcpxml --strict");
    command->callback([&run, arguments] { run = [arguments] { runValidate(*arguments); }; });
}

} // namespace Commands
