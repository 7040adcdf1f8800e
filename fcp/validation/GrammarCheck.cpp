#include "fcp/validation/GrammarCheck.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

using Severity = Problem::Severity;

QString text(QByteArrayView utf8)
{
    return QString::fromUtf8(utf8);
}

QByteArray nameOf(const xmlAttr *attribute)
{
    QByteArray name(reinterpret_cast<const char *>(attribute->name));
    return attribute->ns && attribute->ns->prefix
               ? QByteArray(reinterpret_cast<const char *>(attribute->ns->prefix)) + ':' + name
               : name;
}

bool isBlank(const xmlChar *content)
{
    return QByteArrayView(reinterpret_cast<const char *>(content)).trimmed().isEmpty();
}

/// An id is a name of XML; what cannot begin one is what people stumble over.
bool isName(const QByteArray &value)
{
    return !value.isEmpty() && xmlValidateNameValue(reinterpret_cast<const xmlChar *>(value.constData())) == 1;
}

} // namespace

void GrammarCheck::run(const XmlDocument &document, const Check &check)
{
    SparseCheck step(check);
    for (const xmlNode *element = document.root(); element; element = Xml::nextElement(element, document.root())) {
        step();
        const int number = element->ns ? -1 : m_grammar.number(element->name);
        if (number < 0) {
            m_findings.add(element, u"dtd.element"_s, Severity::error, u"这个版本没有此元素。"_s,
                           u"删除此元素，或改用支持它的版本。"_s);
            continue;
        }
        const DocumentGrammar::Element &rule = m_grammar.element(number);
        checkContent(element, rule);
        checkChoices(element, rule);
        checkText(element, rule);
        checkAttributes(element, rule);
    }
    checkReferences();
}

/// Goes along the places of the rule; a child that does not fit where we are may fit further on.
void GrammarCheck::checkContent(const xmlNode *element, const DocumentGrammar::Element &rule)
{
    size_t at = 0;
    bool filled = false;
    const auto missing = [&](const DocumentGrammar::Group &group) {
        m_findings.add(element, u"dtd.missing"_s, Severity::error,
                       u"缺少必需的 %1。"_s.arg(text(group.names.join("、"))));
    };
    for (const xmlNode *const child : Xml::Children(element)) {
        const int number = child->ns ? -1 : m_grammar.number(child->name);
        if (number < 0)
            continue; // Told of where it is visited itself.
        const auto fits = [&](size_t place) { return bool(rule.content[place].allowed[size_t(number)]); };
        size_t place = at;
        while (place < rule.content.size() && (!fits(place) || (place == at && filled && !rule.content[place].repeats)))
            ++place;
        if (place == rule.content.size()) {
            const bool known = std::ranges::any_of(
                rule.content, [&](const DocumentGrammar::Group &group) { return group.allowed[size_t(number)]; });
            m_findings.add(child, known ? u"dtd.order"_s : u"dtd.content"_s, Severity::error,
                           known ? u"在 %1 中的位置或次数不对。"_s.arg(text(rule.name))
                                 : u"%1 中不能有此元素。"_s.arg(text(rule.name)));
            continue;
        }
        for (size_t passed = at; passed < place; ++passed) {
            if (rule.content[passed].required && !(passed == at && filled))
                missing(rule.content[passed]);
        }
        at = place;
        filled = true;
    }
    for (size_t rest = at; rest < rule.content.size(); ++rest) {
        if (rule.content[rest].required && !(rest == at && filled))
            missing(rule.content[rest]);
    }
}

/// What the notation of the rules has no sign for.
void GrammarCheck::checkChoices(const xmlNode *element, const DocumentGrammar::Element &rule)
{
    if (rule.name == "fcpxml") {
        // One library, or events, or what stands in events.
        const auto kind = [](const xmlNode *child) {
            return Xml::isElement(child, "library") ? 1 : Xml::isElement(child, "event") ? 2 : 3;
        };
        int first = 0;
        for (const xmlNode *const child : Xml::Children(element)) {
            if (Xml::isElement(child, "import-options") || Xml::isElement(child, "resources"))
                continue;
            if (first == 1 || (first != 0 && first != kind(child)))
                m_findings.add(child, u"dtd.order"_s, Severity::error,
                               u"文档中只能有一个资源库，或若干事件，或不在事件中的项目与片段。"_s);
            first = first == 0 ? kind(child) : first;
        }
    } else if (rule.name == "adjust-crop") {
        int count = 0;
        for (const xmlNode *const child : Xml::Children(element))
            count += Xml::isElement(child, "pan-rect") ? 1 : 0;
        if (count != 0 && count != 2)
            m_findings.add(element, u"dtd.missing"_s, Severity::error, u"pan-rect 须成对出现。"_s);
    }
}

void GrammarCheck::checkText(const xmlNode *element, const DocumentGrammar::Element &rule)
{
    if (rule.holdsText)
        return;
    for (const xmlNode *node = element->children; node; node = node->next) {
        const bool isText = node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE;
        if (isText && (node->type == XML_CDATA_SECTION_NODE || !isBlank(node->content)))
            return m_findings.add(element, u"dtd.text"_s, Severity::error, u"此元素中不能直接写文字。"_s);
    }
}

void GrammarCheck::checkAttributes(const xmlNode *element, const DocumentGrammar::Element &rule)
{
    size_t required = 0;
    for (const xmlAttr *each = element->properties; each; each = each->next) {
        const QByteArrayView name(reinterpret_cast<const char *>(each->name));
        const auto known = std::ranges::find_if(rule.attributes, [&](const DocumentGrammar::Attribute &attribute) {
            return QByteArrayView(attribute.name) == name;
        });
        if (each->ns || known == rule.attributes.end()) {
            m_findings.add(element, u"dtd.attribute"_s, Severity::error,
                           u"这个版本没有属性 %1（DTD 验证失败）。"_s.arg(text(nameOf(each))),
                           u"删除属性 %1，或改用支持它的版本。"_s.arg(text(nameOf(each))));
            continue;
        }
        if (known->required)
            ++required;
        if (known->isId || known->refersToId || !known->values.isEmpty())
            checkValue(element, *known, Xml::attribute(element, known->name).value_or(QByteArray()));
    }
    if (required == size_t(std::ranges::count_if(rule.attributes, &DocumentGrammar::Attribute::required)))
        return;
    for (const DocumentGrammar::Attribute &each : rule.attributes) {
        if (each.required && !Xml::attribute(element, each.name))
            m_findings.add(element, u"dtd.required"_s, Severity::error, u"缺少必需的属性 %1。"_s.arg(text(each.name)));
    }
}

void GrammarCheck::checkValue(const xmlNode *element, const DocumentGrammar::Attribute &rule, const QByteArray &value)
{
    if (rule.isId) {
        if (!isName(value))
            m_findings.add(element, u"dtd.id"_s, Severity::error, u"编号“%1”不合规则。"_s.arg(text(value)),
                           u"编号以字母开头，不含空格。"_s);
        else if (m_ids.contains(value))
            m_findings.add(element, u"dtd.duplicate-id"_s, Severity::error, u"编号“%1”重复。"_s.arg(text(value)),
                           u"换一个没有用过的编号，引用它的地方一并修改。"_s);
        m_ids.insert(value);
    } else if (rule.refersToId) {
        m_references.emplace_back(element, value);
    } else if (!rule.values.contains(value)) {
        m_findings.add(element, u"dtd.value"_s, Severity::error,
                       u"属性 %1 的值“%2”不在允许的范围内。"_s.arg(text(rule.name), text(value)),
                       u"可用的值：%1。"_s.arg(text(rule.values.join("、"))));
    }
}

void GrammarCheck::checkReferences()
{
    for (const auto &[element, id] : m_references) {
        if (!m_ids.contains(id))
            m_findings.add(element, u"dtd.reference"_s, Severity::error, u"引用的编号“%1”不存在。"_s.arg(text(id)));
    }
}
