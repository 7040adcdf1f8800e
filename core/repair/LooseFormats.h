#pragma once

#include <QStringView>

#include <functional>

class RepairLog;

/// Readers that take what they can of a subtitle file and note the rest. Each reads a decoded text with line feeds into
/// `log`; `check` is called every few milliseconds.
namespace LooseFormats {

using Check = std::function<void()>;

/// SubRip with numbers missing or doubled, blank lines inside cues, short or missing milliseconds.
void readSrt(QStringView text, RepairLog &log, const Check &check);

/// WebVTT; positions, styles, voices, notes and regions are dropped and named.
void readWebVtt(QStringView text, RepairLog &log, const Check &check);

/// ASS and SSA; styles, positions, drawings and comments are dropped and named. Cues come in the order of their starts.
void readAss(QStringView text, RepairLog &log, const Check &check);

} // namespace LooseFormats
