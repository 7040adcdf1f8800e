#pragma once

#include "app/model/BackgroundTask.h"
#include "core/review/Glossary.h"

/// A person's own terms for translations, kept between runs as comma-separated values.
///
/// Files are read and written on a worker, one after another. What cannot be read or written leaves the terms as they
/// were.
class GlossaryTerms : public QObject
{
    Q_OBJECT

public:
    /// Keeps them in `file`, which need not exist.
    explicit GlossaryTerms(QString file);

    void load(); ///< Reads what is kept, once.
    bool isLoaded() const { return m_isLoaded; }
    const QList<GlossaryTerm> &all() const { return m_terms; }

    QString text() const; ///< As a person edits them: a line each, of term, rendering and note.

    /// Takes the edited lines, and keeps them. @throws ConversionError as Glossary::fromCSV does
    void save(const QString &text);

    void importFrom(const QString &path); ///< Adds a file's terms; those of the same term give way to them.
    void exportTo(const QString &path);
    void wait() { m_files.wait(); } ///< Until every change is in its file.

Q_SIGNALS:
    void changed();
    void done(const QString &message);
    void refused(const Failure &failure);

private:
    void set(const QList<GlossaryTerm> &terms);
    void write(const QString &path, const QString &message);

    QString m_file;
    QList<GlossaryTerm> m_terms;
    bool m_isLoading = false;
    bool m_isLoaded = false;
    BackgroundTask m_files{BackgroundTask::Order::oneAfterAnother, BackgroundTask::Effect::writes};
};
