#include "tests/support/ReferenceImage.h"

#include <QFile>

#include <algorithm>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

constexpr int tolerance = 12;

bool differs(QRgb a, QRgb b)
{
    return std::abs(qRed(a) - qRed(b)) > tolerance || std::abs(qGreen(a) - qGreen(b)) > tolerance ||
           std::abs(qBlue(a) - qBlue(b)) > tolerance || std::abs(qAlpha(a) - qAlpha(b)) > tolerance;
}

qint64 differentPixels(const QImage &a, const QImage &b)
{
    qint64 count = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x)
            count += differs(a.pixel(x, y), b.pixel(x, y)) ? 1 : 0;
    }
    return count;
}

} // namespace

::testing::AssertionResult ReferenceImage::matches(const QImage &received, const QString &path)
{
    QString beside = path;
    beside.replace(u".png"_s, u".received.png"_s);
    const QImage expected = QImage(path);
    QString difference;
    if (expected.isNull()) {
        difference = u"There is no reference picture"_s;
    } else if (expected.size() != received.size()) {
        difference = u"The size differs"_s;
    } else {
        const qint64 count = differentPixels(received, expected);
        const qint64 pixels = static_cast<qint64>(expected.width()) * expected.height();
        if (count * 1000 > pixels)
            difference = u"%1 of %2 pixels differ"_s.arg(count).arg(pixels);
    }
    if (difference.isEmpty()) {
        QFile::remove(beside);
        return ::testing::AssertionSuccess();
    }
    const bool saved = received.save(beside);
    return ::testing::AssertionFailure() << difference.toStdString() << ": " << path.toStdString()
                                         << (saved ? ", received picture beside it"
                                                   : ", and the received one could not be saved");
}
