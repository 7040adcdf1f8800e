#pragma once

#include "app/window/LintoraApplicationDelegate.h"

/// The entry of the application.
namespace LintoraContainer {

/// Runs the application, with what `panel` makes in its window, to its end. Arguments are files and links to open.
///
/// Where another launch already runs, that one gets the files and links. Returns the status for the system: 0, also
/// when they were handed over; 1 when a running program did not take them.
int main(int argc, char **argv, LintoraApplicationDelegate::PanelFactory panel);

/// What the command line asks to be opened: links as they stand, anything else is the path of a file, taken from
/// `folder` unless it is absolute.
QList<QUrl> urls(const QStringList &arguments, const QString &folder);

} // namespace LintoraContainer
