#pragma once

#include "core/Check.h"

#include <QByteArrayView>
#include <QString>
#include <QVarLengthArray>

#include <deque>
#include <initializer_list>
#include <vector>

/// Reads one JSON document strictly and typed, value by value, without building a tree.
///
/// Strict: RFC 8259 in UTF-8 (a leading byte order mark is passed over), no key twice in one object, no nesting over
/// `maxDepth`, nothing after the document. Typed: a value is what the caller asks for or the call fails; 1 is not true,
/// 1.5 is no integer, integers keep all 64 bits. Keys that nobody asks for are passed over, but must be well-formed.
///
/// Every failure is a PlatformError that names the key path ("tracks[1].items[3].start") or the byte. The bytes must
/// outlive the reader. `check` is called every few milliseconds.
class JsonReader
{
public:
    static constexpr int maxDepth = 64;

    explicit JsonReader(QByteArrayView document, const Check &check = {});

    qint64 readInteger(); ///< A number without a fractional part, within 64 bits.
    double readNumber();  ///< Any number that is finite as a double.
    bool readBoolean();
    QString readText(); ///< Escapes resolved. A lone surrogate is an error.
    bool readNull();    ///< Whether the next value is null, which is then passed over. Any other value stays.

    /// Reads an object. `field` is called at each value with its key and reads it or leaves it to be passed over. The
    /// view of the key is valid until the object has been read.
    /// @throws PlatformError naming the first of `required` that is missing.
    template <class Field>
    void readObject(std::initializer_list<QByteArrayView> required, Field &&field);

    /// Reads an array. `element` is called at each value and reads it or leaves it to be passed over.
    template <class Element>
    void readArray(Element &&element);

    void skip(); ///< Passes over one value of any kind.

    /// @throws PlatformError unless the document ends here.
    void finish();

    /// A value of the right type whose content the record does not allow: names its path in the error thrown.
    [[noreturn]] void refuse(QStringView expectation) const;

private:
    struct Level
    {
        QByteArrayView key;     ///< Of the value being read; null in an array.
        qsizetype index = -1;   ///< Of the value being read; -1 in an object.
        qsizetype firstKey = 0; ///< Where this object's keys begin in m_keys.
        size_t unescaped = 0;   ///< How many of m_unescapedKeys belong to the objects around this one.
    };

    struct Number
    {
        QByteArrayView token;
        bool isPlain = true; ///< Digits alone, without point and exponent.
    };

    void open(char bracket, QStringView expectation);
    bool atClose(char bracket, bool first);
    bool nextKey(bool first);
    void nextElement();
    void close();
    void require(std::initializer_list<QByteArrayView> keys);
    void refuseRepeatedKey();

    void skipSpace();
    char peek();
    Number takeNumber(QStringView expectation);
    const char *digitsEnd(const char *at) const;
    bool takeLiteral(QByteArrayView word);
    QByteArrayView takeString();
    QByteArray unescape(QByteArrayView beginning);
    void readEscape(QByteArray &text);
    char16_t readHex();
    QString path() const;
    [[noreturn]] void malformed() const;

    SparseCheck m_goOn;
    const char *m_begin;
    const char *m_at;
    const char *m_end;
    QVarLengthArray<Level, 8> m_levels;
    std::vector<QByteArrayView> m_keys;     ///< The keys seen so far in every open object.
    std::deque<QByteArray> m_unescapedKeys; ///< What those of m_keys view that hold escapes in the document.
    QByteArray m_unescaped;                 ///< What takeString returned last, if it held escapes.
};

template <class Field>
void JsonReader::readObject(std::initializer_list<QByteArrayView> required, Field &&field)
{
    open('{', u"对象");
    for (bool first = true; nextKey(first); first = false) {
        const char *const value = m_at;
        field(QByteArrayView(m_levels.back().key));
        if (m_at == value)
            skip();
    }
    require(required);
    close();
}

template <class Element>
void JsonReader::readArray(Element &&element)
{
    open('[', u"数组");
    for (bool first = true; !atClose(']', first); first = false) {
        nextElement();
        skipSpace();
        const char *const value = m_at;
        element();
        if (m_at == value)
            skip();
    }
    close();
}
