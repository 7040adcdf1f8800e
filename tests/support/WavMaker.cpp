#include "tests/support/WavMaker.h"

#include <QDataStream>
#include <QFile>
#include <QtEndian>

#include <cmath>

namespace {

QDataStream &littleEndian(QDataStream &stream)
{
    stream.setByteOrder(QDataStream::LittleEndian);
    return stream;
}

} // namespace

bool Wav::write(const QString &path) const
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    const auto count = quint16(channels.size());
    const auto bytes = quint32(channels.front().size() * count * 2);
    QByteArray content;
    QDataStream out(&content, QIODevice::WriteOnly);
    littleEndian(out).writeRawData("RIFF", 4);
    out << quint32(36 + bytes);
    out.writeRawData("WAVEfmt ", 8);
    out << quint32(16) << quint16(1) << count << quint32(rate) << quint32(rate * count * 2) << quint16(count * 2)
        << quint16(16);
    out.writeRawData("data", 4);
    out << bytes;
    for (size_t i = 0; i < channels.front().size(); ++i) {
        for (const auto &channel : channels)
            out << qint16(std::lround(channel[i] * 32'767));
    }
    return file.write(content) == content.size();
}

std::optional<Wav> Wav::read(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    QDataStream in(&file);
    littleEndian(in).skipRawData(12);
    quint16 count = 0;
    quint32 rate = 0;
    for (;;) {
        QByteArray name(4, '\0');
        quint32 size = 0;
        in.readRawData(name.data(), 4);
        in >> size;
        if (in.status() != QDataStream::Ok)
            return std::nullopt;
        if (name == "fmt ") {
            quint16 format = 0;
            in >> format >> count >> rate;
            in.skipRawData(int(size) - 8);
        } else if (name == "data") {
            QByteArray bytes(size, '\0');
            if (count == 0 || in.readRawData(bytes.data(), int(size)) != int(size))
                return std::nullopt;
            Wav wav{.rate = int(rate), .channels = std::vector<std::vector<double>>(count)};
            for (qsizetype i = 0; i < bytes.size() / 2; ++i)
                wav.channels[size_t(i % count)].push_back(qFromLittleEndian<qint16>(bytes.constData() + 2 * i) /
                                                          32'767.0);
            return wav;
        } else {
            in.skipRawData(int(size));
        }
    }
}
