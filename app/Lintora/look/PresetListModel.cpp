#include "app/Lintora/look/PresetListModel.h"

#include <algorithm>

using namespace Qt::StringLiterals;

PresetListModel::PresetListModel(StylePresets &presets, QObject *parent)
    : QAbstractListModel(parent)
    , m_source(presets)
    , m_presets(presets.all())
{
    connect(&presets, &StylePresets::changed, this, &PresetListModel::follow);
}

int PresetListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_presets.size());
}

QVariant PresetListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const SubtitleStylePreset &each = preset(index);
    if (role == Qt::DisplayRole)
        return each.name;
    if (role == Qt::ToolTipRole && each.look)
        return u"%1\n标题模板“%2”"_s.arg(each.name, each.look->name());
    if (role == Qt::ToolTipRole)
        return u"%1\n%2 · %3 点 · %4 × %5"_s.arg(each.name, each.style.font, QString::number(each.style.fontSize),
                                                 QString::number(each.style.width), QString::number(each.style.height));
    return {};
}

QModelIndex PresetListModel::indexOf(const QUuid &id) const
{
    const auto found = std::ranges::find(m_presets, id, &SubtitleStylePreset::id);
    return found == m_presets.end() ? QModelIndex() : index(int(found - m_presets.begin()));
}

QModelIndex PresetListModel::indexOf(const QString &name) const
{
    const QString wanted = name.trimmed();
    const auto found =
        std::ranges::find_if(m_presets, [&](const SubtitleStylePreset &each) { return each.name.trimmed() == wanted; });
    return found == m_presets.end() ? QModelIndex() : index(int(found - m_presets.begin()));
}

void PresetListModel::follow()
{
    beginResetModel();
    m_presets = m_source.all();
    endResetModel();
}
