#include "fcp/validation/DocumentSketch.h"

#include <algorithm>
#include <array>

namespace {

QByteArrayView nameView(const xmlChar *name)
{
    return {reinterpret_cast<const char *>(name)};
}

bool isLeafName(QByteArrayView name)
{
    static constexpr std::array<QByteArrayView, 5> leaves{"text", "text-style-def", "param", "metadata", "bookmark"};
    return std::ranges::find(leaves, name) != leaves.end();
}

bool tells(QByteArrayView attribute)
{
    static constexpr std::array<QByteArrayView, 16> names{
        "offset", "start",   "duration",      "lane",    "ref",         "role", "id",       "format",
        "src",    "modDate", "frameDuration", "tcStart", "audioLayout", "uid",  "hasVideo", "version"};
    return std::ranges::find(names, attribute) != names.end();
}

} // namespace

bool DocumentSketch::Element::isLeaf() const
{
    return m_isPlain && isLeafName(m_name);
}

std::optional<QByteArrayView> DocumentSketch::Element::attribute(QByteArrayView name) const
{
    const auto found = std::ranges::find(m_attributes, name, &Attribute::name);
    return found == m_attributes.end() ? std::nullopt : std::optional(found->value);
}

const DocumentSketch::Element *DocumentSketch::Element::child(QByteArrayView name) const
{
    const Element *each = m_firstChild;
    while (each && !each->is(name))
        each = each->m_next;
    return each;
}

template <class T>
std::span<const T> DocumentSketch::Store<T>::add(std::span<const T> row)
{
    constexpr size_t usual = 65'536 / sizeof(T);
    if (m_blocks.empty() || m_blocks.back().capacity() - m_blocks.back().size() < row.size()) {
        m_blocks.emplace_back();
        m_blocks.back().reserve(std::max(usual, row.size()));
    }
    std::vector<T> &block = m_blocks.back();
    block.insert(block.end(), row.begin(), row.end());
    return std::span(block).last(row.size());
}

bool DocumentSketch::begin(const XmlTag &tag, const xmlNode * /*parent*/, int line)
{
    const size_t number = m_count++;
    Open *const around = m_open.empty() ? nullptr : &m_open.back();
    if (around && !isLookedAt(tag, *around)) {
        m_open.emplace_back();
        return false;
    }
    Element &element = m_elements.emplace_back();
    element.m_isPlain = tag.isPlain();
    element.m_name = element.m_isPlain ? nameView(tag.name()) : kept(tag.shownName());
    element.m_attributes = kept(tag);
    element.m_number = number;
    element.m_line = line;
    bool keepsText = false;
    if (around) {
        element.m_parent = around->element;
        (around->last ? around->last->m_next : around->element->m_firstChild) = &element;
        around->last = &element;
        keepsText = around->keepsText || (element.is("text") && around->element->is("caption"));
    }
    m_open.push_back({.element = &element, .keepsText = keepsText});
    return false;
}

void DocumentSketch::text(QByteArrayView text, bool /*section*/)
{
    if (m_open.back().keepsText)
        m_open.back().element->m_text.append(text);
}

void DocumentSketch::end()
{
    m_open.pop_back();
}

/// Any resource can be referred to, the lines of a caption are counted, and any element may bear a date.
bool DocumentSketch::isLookedAt(const XmlTag &tag, const Open &parent)
{
    if (!parent.element)
        return false;
    if (parent.element->isLeaf())
        return parent.keepsText;
    return !tag.isPlain() || !isLeafName(nameView(tag.name())) || parent.element->is("resources") ||
           (tag.isNamed("text") && parent.element->is("caption")) || tag.value("modDate");
}

std::span<const DocumentSketch::Attribute> DocumentSketch::kept(const XmlTag &tag)
{
    m_row.clear();
    for (int i = 0; i < tag.count(); ++i) {
        const XmlTag::Attribute each = tag.attribute(i);
        if (!each.prefix && tells(nameView(each.name)))
            m_row.push_back(
                {.name = nameView(each.name), .value = each.raw.contains('&') ? kept(each.value()) : kept(each.raw)});
    }
    return m_attributes.add(m_row);
}

QByteArrayView DocumentSketch::kept(QByteArrayView text)
{
    return m_values.add(std::span(text.data(), size_t(text.size())));
}
