#pragma once

#include <QStringList>

#include <optional>

/// Names of a family's faces, as a style keeps them: absent for "Regular".
namespace FontFaces {

QString shown(const std::optional<QString> &kept);
std::optional<QString> kept(const QString &shown);

/// The face to set titles in when the family is new to them: the one of that name if there is one, else the plain one.
/// "Regular" when no face is known.
QString best(const QStringList &faces, const QString &wanted);

} // namespace FontFaces
