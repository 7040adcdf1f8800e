#include "fcp/texts/TextEditor.h"

#include "core/files/Utf8Writer.h"
#include "core/text/Characters.h"
#include "fcp/texts/TextFields.h"
#include "fcp/xml/XmlText.h"
#include "fcp/xml/XmlWriter.h"

#include <QStringList>

#include <algorithm>
#include <map>
#include <set>

using namespace Qt::StringLiterals;

namespace {

using TextFields::Field;

bool isText(const xmlNode *element)
{
    return Xml::isElement(element, "title") || Xml::isElement(element, "caption");
}

/// The document as UTF-8: as it stands where it is that, else written anew.
QByteArray asUtf8(const QByteArray &bytes, const XmlDocument &tree)
{
    const xmlChar *const encoding = tree.get()->encoding;
    const QByteArray name = encoding ? QByteArray(reinterpret_cast<const char *>(encoding)).toUpper() : "UTF-8";
    if (name == "UTF-8" || name == "US-ASCII" || name == "ASCII")
        return bytes;
    QByteArray written;
    Utf8Writer out([&](QByteArrayView block) { written.append(block); });
    XmlWriter(out).write(tree);
    out.finish();
    return written;
}

QByteArray escaped(QStringView text, void (*write)(QStringView, Utf8Writer &))
{
    QByteArray bytes;
    Utf8Writer out([&](QByteArrayView block) { bytes.append(block); });
    write(text, out);
    out.finish();
    return bytes;
}

/// What two texts have in common at both ends, without taking half a character.
struct Common
{
    qsizetype prefix = 0;
    qsizetype suffix = 0;
};

Common commonEnds(QStringView a, QStringView b)
{
    const qsizetype shorter = std::min(a.size(), b.size());
    Common common;
    while (common.prefix < shorter && a[common.prefix] == b[common.prefix])
        ++common.prefix;
    if (common.prefix > 0 && a[common.prefix - 1].isHighSurrogate())
        --common.prefix;
    while (common.suffix < shorter - common.prefix &&
           a[a.size() - 1 - common.suffix] == b[b.size() - 1 - common.suffix])
        ++common.suffix;
    if (common.suffix > 0 && a[a.size() - common.suffix].isLowSurrogate())
        --common.suffix;
    return common;
}

/// `text` in a field's place, with the white space that stands around what the field says.
QString withSurroundings(const QString &content, const QString &text)
{
    const QStringView core = Characters::trimmed(content);
    const qsizetype begin = core.isEmpty() ? 0 : core.data() - QStringView(content).data();
    return content.first(begin) + text + content.sliced(begin + core.size());
}

/// The texts of a field's runs once it says `content`: what changed goes to the first run that it touches.
QStringList runsSaying(const Field &field, const QString &content)
{
    const QString old = field.content();
    const Common common = commonEnds(old, content);
    const qsizetype from = common.prefix;
    const qsizetype to = old.size() - common.suffix;
    const QString inserted = content.sliced(from, content.size() - common.suffix - from);
    // An insertion goes on in the style of the character before it.
    const qsizetype anchor = from == to && from > 0 ? from - 1 : from;
    QStringList texts;
    qsizetype begin = 0;
    bool placed = false;
    for (const TextFields::Run &run : field.runs) {
        const qsizetype end = begin + run.text.size();
        QString text = old.sliced(begin, std::clamp(from, begin, end) - begin);
        if (!placed && anchor < end) {
            text += inserted;
            placed = true;
        }
        const qsizetype tail = std::clamp(to, begin, end);
        texts.append(text + old.sliced(tail, end - tail));
        begin = end;
    }
    return texts;
}

/// How a run looks, without its kerning, which differs in the last character of most texts.
std::map<QByteArray, QByteArray> look(const xmlNode *title, const xmlNode *run)
{
    std::map<QByteArray, QByteArray> found;
    const auto take = [&](const xmlNode *style) {
        for (const xmlAttr *each = style->properties; each; each = each->next) {
            const QByteArray name(reinterpret_cast<const char *>(each->name));
            if (name != "kerning" && name != "ref")
                found[name] = Xml::attribute(style, name).value_or(QByteArray());
        }
        for (const xmlNode *const param : Xml::Children(style)) {
            if (Xml::attribute(param, "name") != "MotionSimpleValues")
                found["param " + Xml::attribute(param, "key").value_or(QByteArray())] =
                    Xml::attribute(param, "value").value_or(QByteArray());
        }
    };
    const auto ref = Xml::attribute(run, "ref");
    for (const xmlNode *const definition : Xml::Children(title)) {
        if (ref && Xml::isElement(definition, "text-style-def") && Xml::attribute(definition, "id") == ref) {
            for (const xmlNode *const style : Xml::Children(definition))
                take(style);
        }
    }
    take(run);
    return found;
}

/// Whether the runs whose text changes looked different.
bool changesStyles(const xmlNode *title, const Field &field, const QStringList &texts)
{
    std::set<std::map<QByteArray, QByteArray>> looks;
    for (size_t i = 0; i < field.runs.size(); ++i) {
        if (field.runs[i].text != texts[qsizetype(i)] && !Characters::trimmed(field.runs[i].text).isEmpty())
            looks.insert(look(title, field.runs[i].element));
    }
    return looks.size() > 1;
}

/// What each field that has text is to say. Absent when `text` does not tell.
std::optional<QStringList> shared(const std::vector<const Field *> &fields, const QString &text)
{
    if (fields.size() == 1)
        return QStringList{text};
    const QStringList lines = text.split(u'\n');
    QList<QStringList> old;
    qsizetype count = 0;
    for (const Field *const field : fields) {
        old.append(field->shown().split(u'\n'));
        count += old.last().size();
    }
    QStringList result;
    if (count == lines.size()) {
        qsizetype at = 0;
        for (const QStringList &each : old) {
            result.append(lines.sliced(at, each.size()).join(u'\n'));
            at += each.size();
        }
        return result;
    }
    // Other fields must say what they said, around the one that grew or shrank.
    qsizetype first = 0;
    qsizetype begin = 0;
    while (first < old.size() - 1 && lines.mid(begin, old[first].size()) == old[first])
        begin += old[first++].size();
    qsizetype last = old.size() - 1;
    qsizetype end = lines.size();
    while (last > first && end - old[last].size() > begin &&
           lines.mid(end - old[last].size(), old[last].size()) == old[last])
        end -= old[last--].size();
    if (first != last || begin >= end)
        return std::nullopt;
    for (qsizetype i = 0; i < old.size(); ++i)
        result.append(i == first ? lines.sliced(begin, end - begin).join(u'\n') : old[i].join(u'\n'));
    return result;
}

/// The name that follows a text: the text on one line, alone or before " - " and the effect's name.
std::optional<QString> followingName(const QString &name, const QString &before, const QString &after)
{
    const auto flat = [](QString text) { return text.replace(u'\n', u' '); };
    const QString old = flat(before);
    if (name == old)
        return flat(after);
    if (name.startsWith(old + u" - "_s))
        return flat(after) + name.sliced(old.size());
    return std::nullopt;
}

} // namespace

TextEditor::TextEditor(const QByteArray &bytes, const XmlDocument &tree)
    : m_source(asUtf8(bytes, tree))
{
    size_t element = 0;
    for (const xmlNode *node = tree.root(); node; node = Xml::nextElement(node, tree.root())) {
        if (isText(node))
            m_numbers.emplace(node, m_numbers.size());
        if (isText(node) || Xml::isElement(node, "text") || Xml::isElement(node, "text-style") ||
            Xml::isElement(node, "text-style-def"))
            m_elements.emplace(node, element);
        ++element;
    }
}

const XmlSource::Element &TextEditor::place(const xmlNode *element) const
{
    return m_source.element(m_elements.at(element));
}

TextEditor::Outcome TextEditor::setText(const xmlNode *element, const QString &text)
{
    const std::vector<Field> fields = TextFields::read(element);
    std::vector<const Field *> spoken;
    for (const Field &field : fields) {
        if (!field.shown().isEmpty())
            spoken.push_back(&field);
    }
    const auto texts = shared(spoken, text);
    if (!texts)
        return Outcome::unclearFields;
    bool styles = false;
    for (size_t i = 0; i < spoken.size(); ++i) {
        const Field &field = *spoken[i];
        const QString &saying = (*texts)[qsizetype(i)];
        if (saying == field.shown())
            continue;
        const QStringList runs = runsSaying(field, withSurroundings(field.content(), saying));
        styles |= changesStyles(element, field, runs);
        for (size_t run = 0; run < field.runs.size(); ++run) {
            if (runs[qsizetype(run)] == field.runs[run].text)
                continue;
            const XmlSource::Element &at = place(field.runs[run].element);
            m_source.replace({.begin = at.contentBegin, .end = at.contentEnd},
                             escaped(runs[qsizetype(run)], XmlText::writeContent));
        }
    }
    const QString name = QString::fromUtf8(Xml::attribute(element, "name").value_or(QByteArray()));
    if (const auto following = followingName(name, TextFields::shown(fields), text))
        setAttribute(element, "name", escaped(*following, XmlText::writeAttribute));
    return styles ? Outcome::writtenOverStyles : Outcome::written;
}

void TextEditor::setAttribute(const xmlNode *element, QByteArrayView name, const QByteArray &value)
{
    if (const auto range = m_source.attribute(m_elements.at(element), name))
        m_source.replace(*range, value);
}

void TextEditor::remove(const xmlNode *element)
{
    const XmlSource::Element &at = place(element);
    qsizetype begin = at.begin;
    while (begin > 0 && QByteArrayView(" \t\r\n").contains(m_source.bytes({.begin = begin - 1, .end = begin}).front()))
        --begin;
    m_source.replace({.begin = begin, .end = at.end}, {});
}

void TextEditor::insertBehind(const xmlNode *element, const QByteArray &xml)
{
    const qsizetype end = place(element).end;
    m_source.replace({.begin = end, .end = end}, xml);
}

QByteArray TextEditor::xml(const xmlNode *element) const
{
    const XmlSource::Element &at = place(element);
    return m_source.bytes({.begin = at.begin, .end = at.end}).toByteArray();
}
