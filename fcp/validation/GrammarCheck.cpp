#include "fcp/validation/GrammarCheck.h"

#include <algorithm>
#include <tuple>

using namespace Qt::StringLiterals;

namespace {

QString text(QByteArrayView utf8)
{
    return QString::fromUtf8(utf8);
}

QByteArray nameOf(const XmlTag::Attribute &attribute)
{
    const QByteArray name(reinterpret_cast<const char *>(attribute.name));
    return attribute.prefix ? QByteArray(reinterpret_cast<const char *>(attribute.prefix)) + ':' + name : name;
}

/// An id is a name of XML; what cannot begin one is what people stumble over.
bool isName(const QByteArray &value)
{
    return !value.isEmpty() && xmlValidateNameValue(reinterpret_cast<const xmlChar *>(value.constData())) == 1;
}

} // namespace

Findings::Place GrammarCheck::placeOf(const Open &element)
{
    return {.number = element.number, .name = element.rule->name, .line = element.line};
}

bool GrammarCheck::begin(const XmlTag &tag, const xmlNode * /*parent*/, int line)
{
    const size_t turn = m_count++;
    const int number = tag.isPlain() ? m_grammar.number(tag.name()) : -1;
    if (!m_open.empty() && m_open.back().rule) {
        if (number >= 0) // else told of in its own turn
            checkChild(m_open.back(), tag, number, line);
        checkChoice(m_open.back(), tag, line);
    }
    m_open.push_back({.number = turn, .line = line, .rule = number < 0 ? nullptr : &m_grammar.element(number)});
    if (number < 0)
        tell(turn, About::content, {.number = turn, .name = tag.shownName(), .line = line}, u"dtd.element"_s,
             u"这个版本没有此元素。"_s, u"删除此元素，或改用支持它的版本。"_s);
    else
        checkAttributes(m_open.back(), tag, number);
    return false;
}

void GrammarCheck::text(QByteArrayView text, bool section)
{
    Open &element = m_open.back();
    if (element.rule && !element.rule->holdsText && !element.strayText)
        element.strayText = section || !text.trimmed().isEmpty();
}

void GrammarCheck::end()
{
    const Open element = m_open.back();
    m_open.pop_back();
    if (!element.rule)
        return;
    const auto &content = element.rule->content;
    for (size_t rest = element.at; rest < content.size(); ++rest) {
        if (content[rest].required && !(rest == element.at && element.filled))
            missing(element, content[rest]);
    }
    if (element.rule->name == "adjust-crop" && element.choice != 0 && element.choice != 2)
        tell(element.number, About::choices, placeOf(element), u"dtd.missing"_s, u"pan-rect 须成对出现。"_s);
    if (element.strayText)
        tell(element.number, About::text, placeOf(element), u"dtd.text"_s, u"此元素中不能直接写文字。"_s);
}

/// Goes along the places of the rule; a child that does not fit where we are may fit further on.
void GrammarCheck::checkChild(Open &parent, const XmlTag &tag, int number, int line)
{
    const DocumentGrammar::Element &rule = *parent.rule;
    const auto fits = [&](size_t place) { return bool(rule.content[place].allowed[size_t(number)]); };
    size_t place = parent.at;
    while (place < rule.content.size() &&
           (!fits(place) || (place == parent.at && parent.filled && !rule.content[place].repeats)))
        ++place;
    if (place == rule.content.size()) {
        const bool known = std::ranges::any_of(
            rule.content, [&](const DocumentGrammar::Group &group) { return group.allowed[size_t(number)]; });
        tell(parent.number, About::content, {.number = m_count - 1, .name = tag.shownName(), .line = line},
             known ? u"dtd.order"_s : u"dtd.content"_s,
             known ? u"在 %1 中的位置或次数不对。"_s.arg(::text(rule.name))
                   : u"%1 中不能有此元素。"_s.arg(::text(rule.name)));
        return;
    }
    for (size_t passed = parent.at; passed < place; ++passed) {
        if (rule.content[passed].required && !(passed == parent.at && parent.filled))
            missing(parent, rule.content[passed]);
    }
    parent.at = place;
    parent.filled = true;
}

/// What the notation of the rules has no sign for.
void GrammarCheck::checkChoice(Open &parent, const XmlTag &tag, int line)
{
    if (parent.rule->name == "fcpxml" && !tag.isNamed("import-options") && !tag.isNamed("resources")) {
        // One library, or events, or what stands in events.
        const int kind = tag.isNamed("library") ? 1 : tag.isNamed("event") ? 2 : 3;
        if (parent.choice == 1 || (parent.choice != 0 && parent.choice != kind))
            tell(parent.number, About::choices, {.number = m_count - 1, .name = tag.shownName(), .line = line},
                 u"dtd.order"_s, u"文档中只能有一个资源库，或若干事件，或不在事件中的项目与片段。"_s);
        parent.choice = parent.choice == 0 ? kind : parent.choice;
    } else if (parent.rule->name == "adjust-crop" && tag.isNamed("pan-rect")) {
        ++parent.choice;
    }
}

void GrammarCheck::checkAttributes(const Open &element, const XmlTag &tag, int number)
{
    int required = 0;
    for (int i = 0; i < tag.count(); ++i) {
        const XmlTag::Attribute each = tag.attribute(i);
        const DocumentGrammar::Attribute *const known = each.prefix ? nullptr : m_grammar.attribute(number, each.name);
        if (!known) {
            const QString name = ::text(nameOf(each));
            tell(element.number, About::attributes, placeOf(element), u"dtd.attribute"_s,
                 u"这个版本没有属性 %1（DTD 验证失败）。"_s.arg(name),
                 u"删除属性 %1，或改用支持它的版本。"_s.arg(name));
            continue;
        }
        if (known->required)
            ++required;
        if (known->isId || known->refersToId || !known->values.isEmpty())
            checkValue(element, *known, each);
    }
    if (required == element.rule->required)
        return;
    for (const DocumentGrammar::Attribute &each : element.rule->attributes) {
        if (each.required && !tag.value(each.name))
            tell(element.number, About::attributes, placeOf(element), u"dtd.required"_s,
                 u"缺少必需的属性 %1。"_s.arg(::text(each.name)));
    }
}

void GrammarCheck::checkValue(const Open &element, const DocumentGrammar::Attribute &rule,
                              const XmlTag::Attribute &attribute)
{
    const auto tellOf = [&](const QString &broken, const QString &message, const QString &fix) {
        tell(element.number, About::attributes, placeOf(element), broken, message, fix);
    };
    const QByteArrayView raw = attribute.raw;
    if (rule.isId) {
        const QByteArray value = attribute.value();
        if (!isName(value))
            tellOf(u"dtd.id"_s, u"编号“%1”不合规则。"_s.arg(::text(value)), u"编号以字母开头，不含空格。"_s);
        else if (m_ids.contains(value))
            tellOf(u"dtd.duplicate-id"_s, u"编号“%1”重复。"_s.arg(::text(value)),
                   u"换一个没有用过的编号，引用它的地方一并修改。"_s);
        m_ids.insert(value);
    } else if (rule.refersToId) {
        if (!m_ids.contains(QByteArray::fromRawData(raw.data(), raw.size())))
            m_references.push_back({.place = placeOf(element), .id = attribute.value()});
    } else if (!rule.values.contains(raw)) { // no value that is allowed has a character to be decoded
        tellOf(u"dtd.value"_s,
               u"属性 %1 的值“%2”不在允许的范围内。"_s.arg(::text(rule.name), ::text(attribute.value())),
               u"可用的值：%1。"_s.arg(::text(rule.values.join("、"))));
    }
}

void GrammarCheck::missing(const Open &element, const DocumentGrammar::Group &group)
{
    tell(element.number, About::content, placeOf(element), u"dtd.missing"_s,
         u"缺少必需的 %1。"_s.arg(::text(group.names.join("、"))));
}

void GrammarCheck::tell(size_t turn, About about, Findings::Place place, const QString &rule, const QString &message,
                        const QString &fix)
{
    m_told.push_back(
        {.turn = turn, .about = about, .place = std::move(place), .rule = rule, .message = message, .fix = fix});
    // However much is wrong, no more is kept than can still be among what is told.
    if (m_told.size() >= size_t(DocumentCheck::mostProblems) * 8) {
        sort();
        m_told.resize(size_t(DocumentCheck::mostProblems) + 1);
    }
}

/// What an element does not have is known only behind all that stands in it.
void GrammarCheck::sort()
{
    std::ranges::stable_sort(m_told, {}, [](const Told &each) { return std::tuple(each.turn, each.about); });
}

void GrammarCheck::tell(Findings &findings)
{
    sort();
    for (const Told &each : m_told)
        findings.add(each.place, each.rule, Problem::Severity::error, each.message, each.fix);
    for (const Reference &each : m_references) {
        if (!m_ids.contains(each.id))
            findings.add(each.place, u"dtd.reference"_s, Problem::Severity::error,
                         u"引用的编号“%1”不存在。"_s.arg(::text(each.id)));
    }
}
