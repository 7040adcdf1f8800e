#include "fcp/XmlDocument.h"

#include "core/ConversionError.h"
#include "core/PlatformError.h"
#include "core/Utf8Writer.h"
#include "fcp/XmlWriter.h"
#include "tests/fcp/CanonicalXml.h"

#include <QStringEncoder>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QString refusal = u"不支持含外部实体的 XML。"_s;

std::string outcome(const QByteArray &bytes)
{
    try {
        XmlDocument::parse(bytes, refusal);
        return "accepted";
    } catch (const ConversionError &error) {
        return error.message().toStdString();
    } catch (const PlatformError &) {
        return "not well-formed";
    }
}

QByteArray rewritten(const QByteArray &bytes)
{
    const XmlDocument document = XmlDocument::parse(bytes, refusal);
    QByteArray result;
    Utf8Writer out([&](QByteArrayView block) { result.append(block); });
    XmlWriter(out).write(document);
    out.finish();
    return result;
}

QByteArray encoded(const QString &text, QStringConverter::Encoding encoding)
{
    QStringEncoder encoder(encoding, QStringConverter::Flag::WriteBom);
    return encoder.encode(text);
}

} // namespace

TEST(XmlDocument, refuses_entity_declarations_in_any_encoding)
{
    const QString document = u"<!DOCTYPE fcpxml [<!ENTITY a \"b\">]><fcpxml>&a;</fcpxml>"_s;
    using Encoding = QStringConverter::Encoding;
    for (const Encoding encoding : {Encoding::Utf8, Encoding::Utf16LE, Encoding::Utf16BE})
        EXPECT_EQ(outcome(encoded(document, encoding)), refusal.toStdString());
    // EBCDIC, where the declaration's bytes look like nothing.
    const QByteArray ebcdic = QByteArray::fromHex("4c6fa7949340a58599a2899695 7e7ff14bf07f40859583968489 "
                                                  "95877e7ff0f3f77f6f6e4c5ac4d6c3e3e8d7c540a7404a4c5ac5d5e3c9"
                                                  "e3e840817f827f6e");
    EXPECT_NE(outcome(ebcdic), "accepted");
    EXPECT_EQ(outcome("<!DOCTYPE x [<!ENTITY % p SYSTEM \"file:///etc/passwd\"> %p;]><x/>"), refusal.toStdString());
    EXPECT_EQ(outcome("<x><![CDATA[<!ENTITY]]></x>"), refusal.toStdString()) << "the bytes as text count";
}

TEST(XmlDocument, never_reads_another_file)
{
    EXPECT_EQ(outcome("<!DOCTYPE x SYSTEM \"file:///etc/passwd\"><x/>"), "accepted");
    EXPECT_EQ(outcome("<!DOCTYPE x SYSTEM \"http://127.0.0.1:1/x.dtd\"><x/>"), "accepted");
}

TEST(XmlDocument, refuses_what_is_not_well_formed)
{
    for (const QByteArray &bytes :
         {QByteArray(), QByteArray("text"), QByteArray("<x>"), QByteArray("<x/><y/>"), QByteArray("<x a='1' a='2'/>"),
          QByteArray("<x>&undeclared;</x>"), QByteArray("<x>\xFF</x>"), QByteArray("<x>\x01</x>"),
          QByteArray("<x>\0</x>", 8), QByteArray("<x>&#xD800;</x>"), QByteArray("<d>").repeated(100'000)})
        EXPECT_EQ(outcome(bytes), "not well-formed") << bytes.left(40).data();
}

TEST(XmlWriter, gives_a_document_back_as_it_was)
{
    for (const QByteArray &bytes : {
             QByteArray("<?xml version='1.0' standalone='yes'?><!-- a --><?b c?><!DOCTYPE x><x/><!-- d --><?e?>"),
             QByteArray("<x a='1' b=\"&quot;&apos;&lt;&gt;&amp;\" c='&#9;&#10;&#13; \t' d=''/>"),
             QByteArray(
                 "<x> text &amp; &lt;&gt; ]]&gt; &#13; \r\n\t <y/> tail <![CDATA[<raw> & ]]]]><![CDATA[>]]></x>"),
             QByteArray("<x xmlns='urn:a' xmlns:p='urn:b'><p:y p:z='1' z='2'/><y xmlns=''/></x>"),
             QByteArray("<x><!----><?p?><?p  two  words?><![CDATA[]]></x>"),
             QByteArray("<!DOCTYPE x SYSTEM 'x.dtd' [<!ELEMENT x ANY><!ATTLIST x a CDATA 'd'>]><x>好😀&#x1F600;</x>"),
             encoded(u"<?xml version='1.0' encoding='UTF-16'?><x a='字'>幕</x>"_s, QStringConverter::Utf16LE),
             QByteArray("<?xml version='1.0' encoding='GB18030'?><x a='\xD7\xD6'>\xC4\xBB</x>"),
         }) {
        const QByteArray result = rewritten(bytes);
        EXPECT_EQ(CanonicalXml::of(result).toStdString(), CanonicalXml::of(bytes).toStdString());
        EXPECT_EQ(rewritten(result), result) << "a second time changes nothing at all";
        EXPECT_TRUE(result.startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\""));
    }
}
