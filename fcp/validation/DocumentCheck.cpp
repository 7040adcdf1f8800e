#include "fcp/validation/DocumentCheck.h"

#include "fcp/validation/DocumentRules.h"
#include "fcp/validation/DocumentSketch.h"
#include "fcp/validation/Findings.h"
#include "fcp/validation/GrammarCheck.h"
#include "fcp/validation/KnownTroubles.h"
#include "fcp/xml/XmlDocument.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace DocumentCheck {

namespace {

/// The minor number of a document's version, absent when it is none of the form 1.x.
std::optional<int> minorVersion(const QByteArray &version)
{
    bool isNumber = false;
    const int minor = version.startsWith("1.") ? version.sliced(2).toInt(&isNumber) : 0;
    return isNumber && minor >= 0 ? std::optional(minor) : std::nullopt;
}

/// Holds the document against its version's rules while it is parsed, and sketches what is looked at afterwards.
class Reading final : public XmlListener
{
public:
    bool begin(const XmlTag &tag, const xmlNode *parent, int line) override
    {
        if (std::exchange(m_isFirst, false))
            chooseRules(tag);
        if (m_check)
            m_check->begin(tag, parent, line);
        return m_sketch.begin(tag, parent, line);
    }

    void text(QByteArrayView text, bool section) override
    {
        if (m_check)
            m_check->text(text, section);
        m_sketch.text(text, section);
    }

    void end() override
    {
        if (m_check)
            m_check->end();
        m_sketch.end();
    }

    const DocumentSketch &sketch() const { return m_sketch; }

    /// What breaks the rules.
    void tell(Findings &findings)
    {
        if (m_check)
            m_check->tell(findings);
    }

private:
    void chooseRules(const XmlTag &root)
    {
        const auto minor = root.isNamed("fcpxml") ? minorVersion(root.value("version").value_or("")) : std::nullopt;
        if (minor && *minor >= DocumentRules::oldest && *minor <= DocumentRules::newest)
            m_check.emplace(m_grammar.emplace(*minor));
    }

    std::optional<DocumentGrammar> m_grammar;
    std::optional<GrammarCheck> m_check;
    DocumentSketch m_sketch;
    bool m_isFirst = true;
};

void checkVersion(const DocumentSketch::Element &root, Findings &findings)
{
    const auto say = [&](const QString &rule, Problem::Severity severity, const QString &message,
                         const QString &fix = {}) {
        findings.add(Findings::placeOf(root), rule, severity, message, fix);
    };
    if (!root.is("fcpxml"))
        return say(u"document.root"_s, Problem::Severity::error, u"不是 FCPXML 文档。"_s);
    const auto minor = minorVersion(root.attribute("version").value_or("").toByteArray());
    if (!minor || *minor > DocumentRules::newest)
        return say(u"document.version"_s, Problem::Severity::error, u"无法识别 DTD 版本。"_s,
                   u"改为 1.%1 或更低的版本。"_s.arg(DocumentRules::newest));
    if (*minor < DocumentRules::oldest)
        say(u"document.version"_s, Problem::Severity::warning,
            u"版本 1.%1 较旧，未核对元素与属性的规则。"_s.arg(*minor));
}

} // namespace

QList<Problem> problems(QByteArrayView bytes, const Check &check)
{
    Reading reading;
    const XmlDocument document = XmlDocument::parse(bytes, u"不支持含外部实体的 XML。", reading, check);
    Findings findings;
    checkVersion(reading.sketch().root(), findings);
    reading.tell(findings);
    KnownTroubles(document, reading.sketch(), findings, check).run();
    return findings.finish(bytes, document);
}

} // namespace DocumentCheck
