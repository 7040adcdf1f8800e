#pragma once

#include <CLI/App.hpp>

#include <functional>

/// The commands. Each function adds one with its options and help; `run` is set to its work once it is chosen. The work
/// throws ConversionError, PlatformError, Cancelled or Arguments::WrongUse.
namespace Commands {

using Work = std::function<void()>;

void addAlign(CLI::App &app, Work &run);
void addBreak(CLI::App &app, Work &run);
void addCheck(CLI::App &app, Work &run);
void addClean(CLI::App &app, Work &run);
void addConvertScript(CLI::App &app, Work &run);
void addExtract(CLI::App &app, Work &run);
void addModels(CLI::App &app, Work &run);
void addMerge(CLI::App &app, Work &run);
void addPeaks(CLI::App &app, Work &run);
void addPlan(CLI::App &app, Work &run);
void addPresets(CLI::App &app, Work &run);
void addProofread(CLI::App &app, Work &run);
void addRender(CLI::App &app, Work &run);
void addReplace(CLI::App &app, Work &run);
void addRetext(CLI::App &app, Work &run);
void addSeparate(CLI::App &app, Work &run);
void addSession(CLI::App &app, Work &run);
void addSettings(CLI::App &app, Work &run);
void addSnap(CLI::App &app, Work &run);
void addSrt(CLI::App &app, Work &run);
void addTime(CLI::App &app, Work &run);
void addTitles(CLI::App &app, Work &run);
void addTranscribe(CLI::App &app, Work &run);
void addTranslate(CLI::App &app, Work &run);
void addValidate(CLI::App &app, Work &run);

} // namespace Commands
