#pragma once

#include "app/model/StylePresets.h"

#include <QAbstractListModel>

/// The style presets in their order.
class PresetListModel : public QAbstractListModel
{
    Q_OBJECT

public:
    /// `presets` must live as long as this.
    explicit PresetListModel(StylePresets &presets, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

    const SubtitleStylePreset &preset(const QModelIndex &index) const { return m_presets.at(index.row()); }
    QModelIndex indexOf(const QUuid &id) const;
    QModelIndex indexOf(const QString &name) const; ///< As it is compared when one is saved.

private:
    void follow();

    StylePresets &m_source;
    QList<SubtitleStylePreset> m_presets;
};
