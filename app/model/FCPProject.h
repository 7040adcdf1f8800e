#pragma once

#include "fcp/FrameRate.h"

#include <QByteArray>
#include <QString>

#include <optional>

/// A project of Final Cut Pro into which titles can be written, as it was when it was imported.
struct FCPProject
{
    QByteArray document;           ///< The whole document.
    std::optional<QString> folder; ///< Where its relative media paths count from; absent when it was dragged.
    QString name;
    FrameRate rate; ///< The grid of its timeline.

    friend bool operator==(const FCPProject &, const FCPProject &) = default;
};
