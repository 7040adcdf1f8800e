#pragma once

#include <QObject>

/// Keeps shortcuts quiet while an input method composes in any field: the keys belong to the input method.
class CompositionGuard : public QObject
{
    Q_OBJECT

public:
    /// Watches the whole application.
    explicit CompositionGuard(QObject *parent = nullptr);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    const QObject *m_composing = nullptr; ///< The field in which text is being composed; only compared.
};
