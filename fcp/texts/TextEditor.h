#pragma once

#include "fcp/xml/XmlDocument.h"
#include "fcp/xml/XmlSource.h"

#include <QString>

#include <unordered_map>

/// Changes titles and captions of a document in its own bytes: what they say, and single attributes of theirs.
class TextEditor
{
public:
    /// What became of a new text.
    enum class Outcome
    {
        written,
        writtenOverStyles, ///< The words that changed stood in several styles; they took the first one of these.
        unclearFields      ///< Not written: the title has several fields, and the text does not tell which changed.
    };

    /// `bytes` are those that `tree` was read from. It must outlive the editor.
    TextEditor(const QByteArray &bytes, const XmlDocument &tree);

    /// The number of a title or caption among those of the document, from 0 in document order.
    size_t number(const xmlNode *text) const { return m_numbers.at(text); }

    /// Makes `element` say `text`, lines separated by line feeds, none of them empty. Styles, fields and white space
    /// around the text stay; the element's name follows where it repeated the text.
    Outcome setText(const xmlNode *element, const QString &text);

    void setAttribute(const xmlNode *element, QByteArrayView name, const QByteArray &value); ///< One that it has.
    void remove(const xmlNode *element); ///< With the white space before it.
    void insertBehind(const xmlNode *element, const QByteArray &xml);

    QByteArray xml(const xmlNode *element) const; ///< As it was given.

    QByteArray changed() const { return m_source.changed(); }

private:
    const XmlSource::Element &place(const xmlNode *element) const;

    XmlSource m_source;
    std::unordered_map<const xmlNode *, size_t> m_elements; ///< Numbers of those in and around texts.
    std::unordered_map<const xmlNode *, size_t> m_numbers;
};
