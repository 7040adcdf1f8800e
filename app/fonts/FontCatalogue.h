#pragma once

#include "app/fonts/FontNames.h"
#include "app/fonts/FontSearch.h"

#include <QObject>

#include <atomic>
#include <functional>
#include <thread>

/// Every installed font family under its Chinese and English names, and a search over them.
///
/// What takes long happens on a thread of its own: opening every font for its names, and reading Chinese names aloud.
/// Both are kept in a file, so that it happens once for a font. Fonts are opened through QFontDatabase and QRawFont,
/// which may be used on any thread; engines are cached by thread, so those opened here go when the thread ends.
///
/// To be used on the thread that it lives on. Its destruction stops the thread and waits for it, for no longer than one
/// font takes, or the loading of the transliterator.
class FontCatalogue : public QObject
{
    Q_OBJECT

public:
    /// Where fonts come from. Called on the catalogue's thread of work.
    struct Source
    {
        std::function<QStringList()> families;                        ///< In the order of the catalogue.
        std::function<QStringList(const QString &family)> faces;      ///< Of one of these.
        std::function<FontNames::Names(const QString &family)> names; ///< Of the same; empty when unknown.
    };

    /// The fonts of this system, without those that it keeps for itself.
    static Source installed();

    /// @param indexFile Where names and readings are kept between runs.
    explicit FontCatalogue(QString indexFile, Source source = installed(), QObject *parent = nullptr);
    ~FontCatalogue() override;
    Q_DISABLE_COPY_MOVE(FontCatalogue)

    /// Begins to look for fonts; again, when they have changed. Returns at once.
    void load();

    /// Whether the names of all families are known.
    bool isReady() const { return m_isReady; }

    const QList<FontFamily> &families() const { return m_families; }

    /// As FontSearch::find: places in families().
    QList<qsizetype> search(QStringView query, const QStringList &preferred = {}) const;

    /// The family for a new style: "Source Han Sans CN" where it is installed, else what Options begins with.
    static QString defaultFamily();
    static QString defaultFamily(const QStringList &installedFamilies);

Q_SIGNALS:
    void changed();                            ///< There are other families, or more of their names are known.
    void ready();                              ///< All is known. Comes once for every load().
    void indexNotSaved(const QString &reason); ///< The next run has to find out all again. In the system's words.

private:
    enum class Progress
    {
        partial,
        complete
    };

    void work();
    void deliver(QList<FontFamily> families, Progress progress);
    void take(const QList<FontFamily> &families, const FontSearch &search, Progress progress);

    QString m_indexFile;
    Source m_source;
    QList<FontFamily> m_families;
    FontSearch m_search;
    bool m_isReady = false;
    bool m_isWorking = false;
    bool m_loadAgain = false; ///< Fonts changed while they were being read.
    std::atomic<bool> m_stop = false;
    std::thread m_thread;
};
