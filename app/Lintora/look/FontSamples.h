#pragma once

#include <QCache>
#include <QColor>
#include <QImage>
#include <QObject>
#include <QTimer>

/// Names of fonts, each drawn in its own face. Opening a font takes a while: one is drawn at a time, between events,
/// and those asked for last come first, for they are the ones to be seen.
class FontSamples : public QObject
{
    Q_OBJECT

public:
    struct Look
    {
        int pixels = 18; ///< Font size.
        QColor color;
        double ratio = 1; ///< Device pixels in a pixel.

        friend bool operator==(const Look &, const Look &) = default;
    };

    explicit FontSamples(QObject *parent = nullptr);

    /// `text` in the face of `family`, or null while it is not drawn yet.
    const QImage *sample(const QString &family, const QString &text, const Look &look);

Q_SIGNALS:
    void drawn();

private:
    struct Wanted
    {
        QString family;
        QString text;
    };

    void drawNext();

    Look m_look;
    QCache<QString, QImage> m_samples;
    QList<Wanted> m_wanted; ///< Last come, first served.
    QTimer m_drawing;
};
