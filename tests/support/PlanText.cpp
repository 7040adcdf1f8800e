#include "tests/support/PlanText.h"

#include "core/ConversionError.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

QString number(double value)
{
    return QString::number(value, 'g', 9);
}

} // namespace

QStringList planText(const FCPAudioPlan &plan)
{
    QStringList lines;
    for (const FCPAudioSegment &segment : plan.segments) {
        const QString file = QFileInfo(segment.url.toLocalFile()).completeBaseName();
        QString line =
            u"%1: %2 %3 + %4"_s.arg(number(segment.offset), file, number(segment.fileStart), number(segment.duration));
        if (segment.gain != 1)
            line += u" x "_s + number(segment.gain);
        lines += line;
    }
    return lines;
}

QStringList planText(const QByteArray &document)
{
    try {
        return planText(FCPAudioPlan::parse(document));
    } catch (const ConversionError &error) {
        return {u"! "_s + error.message()};
    }
}
