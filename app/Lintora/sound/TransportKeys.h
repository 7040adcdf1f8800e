#pragma once

#include "app/Lintora/sound/Transport.h"

#include <QKeySequence>

/// The keys of playing, some of them plain letters: only while what they were given to has the keyboard itself.
class TransportKeys : public QObject
{
    Q_OBJECT

public:
    /// `transport` must live as long as this.
    explicit TransportKeys(Transport &transport, QObject *parent = nullptr);

    /// Gives them to `widget`, while `isFree` says so, where there is such a question.
    void giveTo(QWidget &widget, std::function<bool()> isFree = {});

    struct Key
    {
        QString keys;
        QString what;
    };

    static QList<Key> keys(); ///< What is to be known of them, and of those that the strip has itself.

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    Transport &m_transport;
    QHash<const QObject *, std::function<bool()>> m_widgets;
};
