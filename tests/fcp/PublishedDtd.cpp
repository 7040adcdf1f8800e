#include "tests/fcp/PublishedDtd.h"

#include "fcp/xml/XmlDocument.h"
#include "tests/support/SharedData.h"

#include <libxml/parser.h>
#include <libxml/valid.h>

#include <cstdarg>

using namespace Qt::StringLiterals;

namespace PublishedDtd {

namespace {

__attribute__((format(printf, 2, 3))) void collect(void *target, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    static_cast<QString *>(target)->append(QString::vasprintf(format, arguments));
    va_end(arguments);
}

} // namespace

std::optional<QString> problems(const QByteArray &document, const QString &version)
{
    const auto path = SharedData::find(u"dtd/FCPXMLv%1.dtd"_s.arg(QString(version).replace(u'.', u'_')));
    if (!path)
        return std::nullopt;
    const std::unique_ptr<xmlDtd, decltype(&xmlFreeDtd)> dtd(
        xmlParseDTD(nullptr, reinterpret_cast<const xmlChar *>(path->toUtf8().constData())), xmlFreeDtd);
    const std::unique_ptr<xmlValidCtxt, decltype(&xmlFreeValidCtxt)> context(xmlNewValidCtxt(), xmlFreeValidCtxt);
    QString found;
    context->userData = &found;
    context->error = collect;
    context->warning = collect;
    const XmlDocument tree = XmlDocument::parse(document, {});
    if (xmlValidateDtd(context.get(), tree.get(), dtd.get()) != 1 && found.isEmpty())
        found = u"invalid"_s;
    return found;
}

} // namespace PublishedDtd
