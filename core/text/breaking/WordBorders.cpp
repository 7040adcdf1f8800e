#include "core/text/breaking/WordBorders.h"

#include "core/PlatformError.h"

#include <unicode/ubrk.h>

void WordBorders::Close::operator()(UBreakIterator *iterator) const
{
    ubrk_close(iterator);
}

namespace {

void require(UErrorCode status)
{
    if (U_FAILURE(status))
        throw PlatformError(QStringLiteral("分词失败：%1").arg(QString::fromLatin1(u_errorName(status))));
}

} // namespace

WordBorders::WordBorders()
{
    UErrorCode status = U_ZERO_ERROR;
    m_iterator.reset(ubrk_open(UBRK_WORD, "zh", nullptr, 0, &status));
    require(status);
}

void WordBorders::start(QStringView text)
{
    UErrorCode status = U_ZERO_ERROR;
    ubrk_setText(m_iterator.get(), text.utf16(), static_cast<int32_t>(text.size()), &status);
    require(status);
}

qsizetype WordBorders::next()
{
    const int32_t at = ubrk_next(m_iterator.get());
    return at == UBRK_DONE ? -1 : at;
}
