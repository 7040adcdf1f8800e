#pragma once

#include <QStringView>

#include <memory>

struct UBreakIterator;

/// Cuts texts into words, Chinese by ICU's dictionary. One object serves text after text on one thread.
class WordBorders
{
public:
    /// @throws PlatformError when ICU has no rules for words
    WordBorders();

    /// Begins a text, which must outlive the walk over it.
    void start(QStringView text);

    /// Goes to the end of the next word, mark or blank; -1 behind the last one. In UTF-16 code units.
    qsizetype next();

private:
    struct Close
    {
        void operator()(UBreakIterator *iterator) const;
    };

    std::unique_ptr<UBreakIterator, Close> m_iterator;
};
