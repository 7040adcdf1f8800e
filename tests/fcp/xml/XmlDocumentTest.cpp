#include "fcp/xml/XmlDocument.h"

#include "core/ConversionError.h"
#include "core/PlatformError.h"
#include "core/files/Utf8Writer.h"
#include "fcp/xml/XmlListener.h"
#include "fcp/xml/XmlWriter.h"
#include "tests/fcp/xml/CanonicalXml.h"

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

QByteArray written(const XmlDocument &document)
{
    QByteArray result;
    Utf8Writer out([&](QByteArrayView block) { result.append(block); });
    XmlWriter(out).write(document);
    out.finish();
    return result;
}

QByteArray rewritten(const QByteArray &bytes)
{
    return written(XmlDocument::parse(bytes, refusal));
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
    for (const Encoding encoding : {Encoding::Utf32LE, Encoding::Utf32BE})
        EXPECT_EQ(outcome(encoded(document, encoding)), refusal.toStdString());
    // In EBCDIC the declaration's bytes look like nothing, and only the parser sees it.
    const QByteArray ebcdic = QByteArray::fromHex("4c6fa7949340a58599a28996957e7ff14bf07f40859583968489958"
                                                  "77e7fc9c2d4f0f3f77f6f6e" // <?xml version="1.0" encoding="IBM037"?>
                                                  "4c5ac4d6c3e3e8d7c540a740ba4c5ac5d5e3c9e3e840817f827f6ebb6e4ca7616e");
    EXPECT_EQ(
        outcome(QByteArray(ebcdic).replace(QByteArray::fromHex("40817f827f6e"), QByteArray::fromHex("4081407f827f6e"))),
        refusal.toStdString());
    EXPECT_EQ(outcome("<!DOCTYPE x [<!ENTITY % p SYSTEM \"file:///etc/passwd\"> %p;]><x/>"), refusal.toStdString());
    EXPECT_EQ(outcome("<x><![CDATA[<!ENTITY]]></x>"), refusal.toStdString()) << "the bytes as text count";
}

TEST(XmlDocument, refuses_references_that_would_change_on_the_way)
{
    // With a definition elsewhere, an unknown entity is no error to the parser: it would drop the reference.
    EXPECT_EQ(outcome("<!DOCTYPE x SYSTEM 'x.dtd'><x a='1&b;2'/>"), refusal.toStdString());
    EXPECT_EQ(outcome("<!DOCTYPE x SYSTEM 'x.dtd'><x>1&b;2</x>"), refusal.toStdString());
    EXPECT_EQ(outcome("<!DOCTYPE x [<!ATTLIST x a CDATA #IMPLIED>]><x a='&lt;&#65;'/>"), "accepted");
}

TEST(XmlDocument, small_documents_that_would_take_hours_are_refused_at_once)
{
    const auto tag = [](int attributes) {
        QByteArray text = "<!-- <y ' --><x";
        for (int i = 0; i < attributes; ++i)
            text += " a" + QByteArray::number(i) + (i % 2 == 0 ? "=''" : " = \">\"");
        return text + "/>";
    };
    EXPECT_EQ(outcome(tag(250)), "accepted");
    EXPECT_EQ(outcome(tag(251)), "not well-formed");
    const QString large = QString::fromLatin1(tag(1'000'000));
    using Encoding = QStringConverter::Encoding;
    for (const Encoding encoding : {Encoding::Utf8, Encoding::Utf16LE, Encoding::Utf16BE, Encoding::Utf32LE})
        EXPECT_EQ(outcome(encoded(large, encoding)), "not well-formed");
    EXPECT_EQ(outcome("<?xml version='1.0' encoding='UTF-7'?>" + tag(100'000).replace('=', "+AD0-")),
              "not well-formed");
    // One line that would give a million elements an attribute each.
    EXPECT_EQ(outcome("<!DOCTYPE x [<!ATTLIST y a CDATA 'd'>]><x>" + QByteArray("<y/>").repeated(1'000'000) + "</x>"),
              "not well-formed");
}

TEST(XmlDocument, says_in_chinese_what_is_too_large)
{
    const QByteArray much(11'000'000, 'a');
    for (const QByteArray &document :
         {QByteArray("<x><!--") + much + "--></x>", QByteArray("<x><?a " + much + "?></x>")}) {
        try {
            XmlDocument::parse(document, refusal);
            ADD_FAILURE() << "accepted";
        } catch (const PlatformError &error) {
            EXPECT_EQ(error.description(), u"XML 无法解析：第 1 行，一段注释、指令或文字超过 10 MB。"_s);
        }
    }
}

TEST(XmlDocument, takes_any_number_of_blanks_behind_the_root)
{
    const QString padded = u"<x>\n</x>"_s + u" \n\r\t"_s.repeated(3'000'000);
    EXPECT_EQ(outcome(padded.toUtf8()), "accepted");
    EXPECT_EQ(outcome(encoded(padded, QStringConverter::Utf16BE)), "accepted");
    EXPECT_EQ(outcome("<x>" + padded.toUtf8()), "not well-formed");
}

TEST(XmlDocument, tells_of_everything_and_keeps_what_is_wanted)
{
    class Heard final : public XmlListener
    {
    public:
        bool begin(const XmlTag &tag, const xmlNode *parent, int line) override
        {
            words += QByteArray::number(line) + tag.shownName();
            for (int i = 0; i < tag.count(); ++i)
                words += ' ' + tag.attribute(i).value();
            words += parent ? "<" : "(";
            return !tag.isNamed("out");
        }
        void text(QByteArrayView text, bool section) override { words += (section ? "!" : "") + text.toByteArray(); }
        void end() override { words += ")"; }

        QByteArray words;
    };
    Heard heard;
    const XmlDocument document = XmlDocument::parse("<out>a<out b='1&amp;2'>c<!--x--><in/><?y?></out>\n<q:in/>"
                                                    "<out xmlns='urn:z'><![CDATA[d]]></out></out>",
                                                    refusal, heard);
    EXPECT_EQ(heard.words.toStdString(), "1out(a1out 1&2<c1in())\n2q:in<)2out<!d))");
    EXPECT_EQ(written(document), rewritten("<out>a\n<q:in/><out xmlns='urn:z'><![CDATA[d]]></out></out>"));
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
             QByteArray(
                 "<!DOCTYPE x SYSTEM 'x.dtd' [<!ELEMENT x ANY><!ATTLIST x a CDATA #IMPLIED>]><x>好😀&#x1F600;</x>"),
             encoded(u"<?xml version='1.0' encoding='UTF-16'?><x a='字'>幕</x>"_s, QStringConverter::Utf16LE),
             QByteArray("<?xml version='1.0' encoding='GB18030'?><x a='\xD7\xD6'>\xC4\xBB</x>"),
         }) {
        const QByteArray result = rewritten(bytes);
        EXPECT_EQ(CanonicalXml::of(result).toStdString(), CanonicalXml::of(bytes).toStdString());
        EXPECT_EQ(rewritten(result), result) << "a second time changes nothing at all";
        EXPECT_TRUE(result.startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\""));
    }
}
