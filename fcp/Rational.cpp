#include "fcp/Rational.h"

#include <limits>
#include <numeric>
#include <utility>

namespace {

__extension__ using Wide = __int128;

/// Whether a number that is not negative fits the processor's own arithmetic, which is many times as fast.
bool isNarrow(Wide number)
{
    return number <= std::numeric_limits<quint64>::max();
}

/// Of two numbers that are not negative.
Wide greatestCommonDivisor(Wide a, Wide b)
{
    while (b != 0 && !(isNarrow(a) && isNarrow(b)))
        a = std::exchange(b, a % b);
    return b == 0 ? a : Wide(std::gcd(static_cast<quint64>(a), static_cast<quint64>(b)));
}

/// Of two numbers that are not negative, the second above 0.
Wide quotient(Wide a, Wide b)
{
    return isNarrow(a) && isNarrow(b) ? Wide(static_cast<quint64>(a) / static_cast<quint64>(b)) : a / b;
}

struct Digits
{
    qint64 value = 0;
    qint64 scale = 1; ///< 10 to the number of digits after the point.
};

/// Reads digits with at most one point among them; nothing else may stand there.
std::optional<Digits> readDecimal(QByteArrayView text)
{
    Digits digits;
    bool point = false;
    bool any = false;
    for (const char c : text) {
        if (c == '.' && !point) {
            point = true;
            continue;
        }
        if (c < '0' || c > '9')
            return std::nullopt;
        any = true;
        if (__builtin_mul_overflow(digits.value, qint64(10), &digits.value) ||
            __builtin_add_overflow(digits.value, qint64(c - '0'), &digits.value) ||
            (point && __builtin_mul_overflow(digits.scale, qint64(10), &digits.scale)))
            return std::nullopt;
    }
    return any ? std::optional(digits) : std::nullopt;
}

} // namespace

RationalOverflow::RationalOverflow()
    : std::overflow_error("a rational number beyond 64 bits")
{}

Rational::Rational(qint64 numerator, qint64 denominator)
{
    *this = reduce(numerator, denominator);
}

std::optional<Rational> Rational::parseTime(QByteArrayView text)
{
    if (!text.endsWith('s'))
        return std::nullopt;
    text.chop(1);
    const bool negative = text.startsWith('-');
    if (negative || text.startsWith('+'))
        text = text.sliced(1);
    const qsizetype slash = text.indexOf('/');
    const auto numerator = readDecimal(slash < 0 ? text : text.first(slash));
    const auto denominator = slash < 0 ? std::optional(Digits{.value = 1}) : readDecimal(text.sliced(slash + 1));
    if (!numerator || !denominator || denominator->value == 0)
        return std::nullopt;
    // A fraction is one of whole numbers.
    if (slash >= 0 && (numerator->scale != 1 || denominator->scale != 1))
        return std::nullopt;
    const qint64 value = negative ? -numerator->value : numerator->value;
    return Rational(value, slash < 0 ? numerator->scale : denominator->value);
}

qint64 Rational::rounded() const
{
    const qint64 whole = m_numerator / m_denominator;
    const qint64 rest = m_numerator % m_denominator;
    const qint64 distance = rest < 0 ? -rest : rest;
    if (distance < m_denominator - distance)
        return whole;
    return m_numerator < 0 ? whole - 1 : whole + 1;
}

qint64 Rational::ceiling() const
{
    const qint64 whole = m_numerator / m_denominator;
    return m_numerator > 0 && m_numerator % m_denominator != 0 ? whole + 1 : whole;
}

Rational Rational::operator-() const
{
    Rational result = *this;
    result.m_numerator = -m_numerator;
    return result;
}

Rational operator+(const Rational &a, const Rational &b)
{
    if (a.m_denominator == b.m_denominator) // as on one grid
        return Rational::reduce(Wide(a.m_numerator) + b.m_numerator, a.m_denominator);
    return Rational::reduce(Wide(a.m_numerator) * b.m_denominator + Wide(b.m_numerator) * a.m_denominator,
                            Wide(a.m_denominator) * b.m_denominator);
}

Rational operator-(const Rational &a, const Rational &b)
{
    return a + -b;
}

Rational operator*(const Rational &a, const Rational &b)
{
    return Rational::reduce(Wide(a.m_numerator) * b.m_numerator, Wide(a.m_denominator) * b.m_denominator);
}

Rational operator/(const Rational &a, const Rational &b)
{
    return Rational::reduce(Wide(a.m_numerator) * b.m_denominator, Wide(a.m_denominator) * b.m_numerator);
}

std::strong_ordering operator<=>(const Rational &a, const Rational &b)
{
    return Wide(a.m_numerator) * b.m_denominator <=> Wide(b.m_numerator) * a.m_denominator;
}

Rational Rational::reduce(Wide numerator, Wide denominator)
{
    if (denominator < 0) {
        numerator = -numerator;
        denominator = -denominator;
    }
    const bool isNegative = numerator < 0;
    Wide size = isNegative ? -numerator : numerator;
    const Wide divisor = denominator == 1 ? Wide(1) : greatestCommonDivisor(size, denominator);
    size = quotient(size, divisor);
    denominator = quotient(denominator, divisor);
    // The smallest 64-bit number has no positive counterpart and is left out.
    constexpr Wide largest = std::numeric_limits<qint64>::max();
    if (size > largest || denominator > largest)
        throw RationalOverflow();
    Rational result;
    result.m_numerator = static_cast<qint64>(isNegative ? -size : size);
    result.m_denominator = static_cast<qint64>(denominator);
    return result;
}
