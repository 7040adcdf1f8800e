#include "app/model/SettingsValues.h"

namespace SettingsValues {

std::optional<bool> boolean(const QVariant &value)
{
    if (value.typeId() == QMetaType::Bool)
        return value.toBool();
    const QString word = value.toString();
    if (word == u"true" || word == u"false")
        return word == u"true";
    return std::nullopt;
}

} // namespace SettingsValues
