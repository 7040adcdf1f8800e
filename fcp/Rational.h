#pragma once

#include <QByteArrayView>

#include <compare>
#include <optional>
#include <stdexcept>

/// A result that 64-bit numerators and denominators cannot hold. Never reaches the user: whoever reads a document or
/// places a cue turns it into the sentence that names what is wrong.
class RationalOverflow : public std::overflow_error
{
public:
    RationalOverflow();
};

/// An exact number, reduced, with a denominator above 0. Seconds of a document, or frames.
///
/// Intermediate products have 128 bits: documents carry numerators beyond 2^32 over denominators of 10^9. Arithmetic
/// throws RationalOverflow when the reduced result does not fit; comparison never fails.
class Rational
{
public:
    Rational() = default;
    Rational(qint64 numerator, qint64 denominator = 1); ///< `denominator` is not 0. A whole number is a rational.

    /// Reads a time of FCPXML: "1001/30000s", "3600s", "23.4s", each with an optional sign. Absent when it is none, or
    /// when it does not fit.
    static std::optional<Rational> parseTime(QByteArrayView text);

    qint64 numerator() const { return m_numerator; }
    qint64 denominator() const { return m_denominator; }

    qint64 rounded() const; ///< Nearest whole number, halves away from zero.
    qint64 ceiling() const;
    double toDouble() const { return double(m_numerator) / double(m_denominator); }

    Rational operator-() const;
    friend Rational operator+(const Rational &a, const Rational &b);
    friend Rational operator-(const Rational &a, const Rational &b);
    friend Rational operator*(const Rational &a, const Rational &b);
    friend Rational operator/(const Rational &a, const Rational &b); ///< `b` is not 0.

    friend bool operator==(const Rational &, const Rational &) = default;
    friend std::strong_ordering operator<=>(const Rational &a, const Rational &b);

private:
    __extension__ using Wide = __int128;

    static Rational reduce(Wide numerator, Wide denominator);

    qint64 m_numerator = 0;
    qint64 m_denominator = 1;
};
