#pragma once

#include <QList>
#include <QString>

/// How a term is to be rendered in the other language.
struct GlossaryTerm
{
    QString term;      ///< In one language. Not empty.
    QString rendering; ///< In the other. Not empty.
    QString note = {}; ///< For people and for the translator; may be empty.

    friend bool operator==(const GlossaryTerm &, const GlossaryTerm &) = default;
};

Q_DECLARE_TYPEINFO(GlossaryTerm, Q_RELOCATABLE_TYPE);

/// A person's own terms, and what becomes of them in a translation.
///
/// A list serves both directions: where a text holds the rendering, the term is what is due. Case and width do not
/// count; a term in Latin letters is found as whole words only.
namespace Glossary {

constexpr qsizetype mostTerms = 1000;
constexpr qsizetype longestField = 200; ///< Characters of a term, a rendering or a note.

/// Reads comma-separated values (RFC 4180): term, rendering, note. A byte order mark, the heading that toCSV writes,
/// empty lines and a missing note are accepted. The first of equal terms counts.
/// @throws ConversionError "术语表第 N 行有误，每行应为：术语,译法,备注。", "术语表最多 1000 条，每项不超过 200 字。"
QList<GlossaryTerm> fromCSV(const QString &text);

/// The same back, with a heading. What a spreadsheet would take for a formula stays as it is.
QString toCSV(const QList<GlossaryTerm> &terms);

/// The terms that `text` holds, turned so that `term` is what stands there and `rendering` what is due.
QList<GlossaryTerm> applying(const QList<GlossaryTerm> &terms, const QString &text);

/// Of those that `source` holds, the ones whose rendering its translation does not have. Empty: all were kept.
QList<GlossaryTerm> missing(const QList<GlossaryTerm> &terms, const QString &source, const QString &translation);

} // namespace Glossary
