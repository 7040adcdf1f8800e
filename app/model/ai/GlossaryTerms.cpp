#include "app/model/ai/GlossaryTerms.h"

#include "core/ConversionError.h"
#include "core/files/AtomicFile.h"
#include "core/files/FileReader.h"

#include <QDir>
#include <QFileInfo>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 largestFile = 4 * 1024 * 1024; // bytes, more than the longest list has

QList<GlossaryTerm> read(const QString &path)
{
    return Failure::naming(path, [&] {
        const auto bytes = FileReader::readUpTo(path, largestFile);
        if (!bytes)
            throw ConversionError(
                u"术语表最多 %1 条，每项不超过 %2 字。"_s.arg(Glossary::mostTerms).arg(Glossary::longestField));
        return Glossary::fromCSV(QString::fromUtf8(*bytes));
    });
}

} // namespace

GlossaryTerms::GlossaryTerms(QString file)
    : m_file(std::move(file))
{}

void GlossaryTerms::load()
{
    if (std::exchange(m_isLoading, true))
        return;
    m_files.run(
        u"正在读取术语表…"_s,
        [file = m_file](Job & /*job*/, const ProgressReport & /*report*/) {
            return QFileInfo::exists(file) ? read(file) : QList<GlossaryTerm>();
        },
        [this](const QList<GlossaryTerm> &terms) {
            m_isLoaded = true;
            set(terms);
        },
        [this](const Failure &failure) {
            m_isLoaded = true;
            Q_EMIT changed();
            Q_EMIT refused(failure);
        });
}

void GlossaryTerms::set(const QList<GlossaryTerm> &terms)
{
    m_terms = terms;
    Q_EMIT changed();
}

QString GlossaryTerms::text() const
{
    return Glossary::toCSV(m_terms).section(u"\r\n"_s, 1).replace(u"\r\n"_s, u"\n"_s);
}

void GlossaryTerms::save(const QString &text)
{
    set(Glossary::fromCSV(text));
    write(m_file, u"已保存 %1 条术语"_s.arg(m_terms.size()));
}

void GlossaryTerms::importFrom(const QString &path)
{
    m_files.run(
        u"正在读取术语表…"_s, [path](Job & /*job*/, const ProgressReport & /*report*/) { return read(path); },
        [this](const QList<GlossaryTerm> &terms) {
            try {
                save(Glossary::toCSV(terms + m_terms));
            } catch (const ConversionError &error) { // too many together
                Q_EMIT refused(Failure::of(error));
            }
        },
        [this](const Failure &failure) { Q_EMIT refused(failure); });
}

void GlossaryTerms::exportTo(const QString &path)
{
    write(path, u"已导出 %1 条术语"_s.arg(m_terms.size()));
}

void GlossaryTerms::write(const QString &path, const QString &message)
{
    m_files.run(
        u"正在保存术语表…"_s,
        [path, terms = m_terms](Job & /*job*/, const ProgressReport & /*report*/) {
            QDir().mkpath(QFileInfo(path).path());
            AtomicFile file(path);
            // Spreadsheets take a file without this mark for one of another encoding.
            file.write("\xEF\xBB\xBF" + Glossary::toCSV(terms).toUtf8());
            file.commit();
            return true;
        },
        [this, message](bool /*done*/) { Q_EMIT done(message); },
        [this](const Failure &failure) { Q_EMIT refused(failure); });
}
