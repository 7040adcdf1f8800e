#include "app/Lintora/cues/CueClipboard.h"

#include <QDataStream>
#include <QIODevice>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace CueClipboard {

namespace {

const QString format = u"application/x-lintora-cues"_s;
constexpr auto version = QDataStream::Qt_6_0;

} // namespace

std::unique_ptr<QMimeData> offering(const QList<Subtitle> &cues)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setVersion(version);
    QStringList texts;
    for (const Subtitle &cue : cues) {
        out << cue.start << cue.end << cue.text;
        texts += cue.text;
    }
    auto data = std::make_unique<QMimeData>();
    data->setText(texts.join(u'\n'));
    data->setData(format, bytes);
    return data;
}

QList<Subtitle> cuesIn(const QMimeData &data)
{
    QDataStream in(data.data(format));
    in.setVersion(version);
    QList<Subtitle> cues;
    while (!in.atEnd()) {
        Subtitle cue;
        in >> cue.start >> cue.end >> cue.text;
        if (in.status() != QDataStream::Ok)
            return {};
        cues += cue;
    }
    return cues;
}

} // namespace CueClipboard
