#pragma once

#include "core/Subtitle.h"
#include "fcp/Options.h"
#include "fcp/xml/XmlDocument.h"

/// Takes out of a list of cues what a project cannot carry, where the user would rather have the rest than a refusal.
namespace TitleFitting {

/// What is to become of cues that reach past the project's end.
enum class PastEnd
{
    refuse, ///< They stay, and writing them ends with the refusal.
    cut,    ///< They end with the project. Those that begin after it are left out.
    drop    ///< They are left out.
};

struct Choice
{
    bool skipRetimed = false; ///< Leave out cues that begin over a speed-changed clip.
    PastEnd pastEnd = PastEnd::refuse;
};

struct LeftOut
{
    Subtitle cue;
    QString reason; ///< For the user.
};

struct Fitted
{
    QList<Subtitle> cues; ///< To be written, in the order given.
    QList<LeftOut> leftOut;
    qsizetype cut = 0; ///< How many of the cues end earlier than they did.
};

/// Fits `cues`, at the rate and with the shift of `options`, to a project of `document`. Whatever else is wrong with
/// them or with the project is left to be refused where they are written.
/// @throws ConversionError when the project's storyline cannot be read
Fitted fit(const QList<Subtitle> &cues, const xmlNode *project, const Options &options, const Choice &choice);

} // namespace TitleFitting
