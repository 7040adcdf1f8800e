#include "fcp/validation/DocumentCheck.h"

#include "fcp/validation/DocumentRules.h"
#include "fcp/validation/Findings.h"
#include "fcp/validation/GrammarCheck.h"
#include "fcp/validation/KnownTroubles.h"

using namespace Qt::StringLiterals;

namespace DocumentCheck {

namespace {

/// The minor number of the document's version, absent when it has none of the form 1.x.
std::optional<int> minorVersion(const xmlNode *root)
{
    const QByteArray version = Xml::attribute(root, "version").value_or(QByteArray());
    bool isNumber = false;
    const int minor = version.startsWith("1.") ? version.sliced(2).toInt(&isNumber) : 0;
    return isNumber && minor >= 0 ? std::optional(minor) : std::nullopt;
}

void checkVersion(const XmlDocument &document, Findings &findings, const Check &check)
{
    const xmlNode *const root = document.root();
    if (!Xml::isElement(root, "fcpxml"))
        return findings.add(root, u"document.root"_s, Problem::Severity::error, u"不是 FCPXML 文档。"_s);
    const auto minor = minorVersion(root);
    if (!minor || *minor > DocumentRules::newest)
        return findings.add(root, u"document.version"_s, Problem::Severity::error, u"无法识别 DTD 版本。"_s,
                            u"改为 1.%1 或更低的版本。"_s.arg(DocumentRules::newest));
    if (*minor < DocumentRules::oldest)
        return findings.add(root, u"document.version"_s, Problem::Severity::warning,
                            u"版本 1.%1 较旧，未核对元素与属性的规则。"_s.arg(*minor));
    const DocumentGrammar grammar(*minor);
    GrammarCheck(grammar, findings).run(document, check);
}

} // namespace

QList<Problem> problems(QByteArrayView bytes, const Check &check)
{
    const XmlDocument document = XmlDocument::parse(bytes, u"不支持含外部实体的 XML。", check);
    Findings findings;
    checkVersion(document, findings, check);
    KnownTroubles(document, findings, check).run();
    return findings.finish(bytes, document);
}

} // namespace DocumentCheck
