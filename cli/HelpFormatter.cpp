#include "cli/HelpFormatter.h"

#include <QString>

#include <algorithm>
#include <regex>

namespace {

constexpr qsizetype nameColumns = 30;

qsizetype columns(const QString &text)
{
    // Everything from the Hangul block on that we write here is full-width.
    return text.size() + std::count_if(text.begin(), text.end(), [](QChar c) { return c.unicode() >= 0x1100; });
}

std::string line(const std::string &name, const std::string &description)
{
    const QString left = QString::fromStdString("  " + name);
    const qsizetype gap = std::max<qsizetype>(nameColumns - columns(left), 2);
    return left.toStdString() + std::string(static_cast<size_t>(gap), ' ') + description + '\n';
}

} // namespace

HelpFormatter::HelpFormatter()
{
    for (const auto &[english, chinese] :
         {std::pair("Usage", "用法"), std::pair("OPTIONS", "选项"), std::pair("SUBCOMMAND", "命令"),
          std::pair("Positionals", "参数"), std::pair("REQUIRED", "（必需）"), std::pair("TEXT", "文字"),
          std::pair("Needs", "须同时有"), std::pair("Excludes", "不能同时有")})
        label(english, chinese);
}

std::string HelpFormatter::make_option(const CLI::Option *option, bool isPositional) const
{
    // The library marks the negative form of a switch with the value it sets.
    const std::string name = CLI::detail::find_and_replace(make_option_name(option, isPositional), "{false}", "");
    // And a range as "INT in [1 - 100]".
    static const std::regex range(R"([A-Z]+ in \[(\S+) - (\S+)\])");
    return line(name + std::regex_replace(make_option_opts(option), range, "$1-$2"), make_option_desc(option));
}

std::string HelpFormatter::make_subcommand(const CLI::App *command) const
{
    return line(command->get_name(), command->get_description());
}
