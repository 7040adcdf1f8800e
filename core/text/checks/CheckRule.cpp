#include "core/text/checks/CheckRule.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace CheckRules {

namespace {

struct Description
{
    CheckRule rule;
    QStringView name;
    QStringView title;
};

constexpr std::array descriptions = {
    Description{CheckRule::readingSpeed, u"reading-speed", u"读不完"},
    Description{CheckRule::tooShort, u"too-short", u"太短"},
    Description{CheckRule::tooLong, u"too-long", u"太长"},
    Description{CheckRule::smallGap, u"small-gap", u"间隙太小"},
    Description{CheckRule::overlap, u"overlap", u"重叠"},
    Description{CheckRule::tooWide, u"too-wide", u"太宽"},
    Description{CheckRule::tooManyLines, u"too-many-lines", u"行数太多"},
    Description{CheckRule::doubled, u"doubled", u"重复"},
    Description{CheckRule::blanks, u"blanks", u"首尾空白"},
    Description{CheckRule::mixedWidth, u"mixed-width", u"全角半角混用"},
    Description{CheckRule::mixedDigits, u"mixed-digits", u"数字写法不一"},
    Description{CheckRule::brackets, u"brackets", u"括号引号不成对"},
    Description{CheckRule::mixedTerms, u"mixed-terms", u"用词写法不一"},
    Description{CheckRule::badCharacters, u"bad-characters", u"控制字符或乱码"},
    Description{CheckRule::offFrame, u"off-frame", u"不在整帧上"},
};

constexpr auto rules = [] {
    std::array<CheckRule, descriptions.size()> list = {};
    for (size_t i = 0; i < list.size(); ++i)
        list[i] = descriptions[i].rule;
    return list;
}();

const Description &of(CheckRule rule)
{
    return descriptions[static_cast<size_t>(rule)];
}

} // namespace

std::span<const CheckRule> all()
{
    return rules;
}

QString name(CheckRule rule)
{
    return of(rule).name.toString();
}

QString title(CheckRule rule)
{
    return of(rule).title.toString();
}

std::optional<CheckRule> named(QStringView name)
{
    const auto *const found = std::find_if(descriptions.begin(), descriptions.end(),
                                           [&](const Description &each) { return each.name == name; });
    return found == descriptions.end() ? std::nullopt : std::optional(found->rule);
}

} // namespace CheckRules
