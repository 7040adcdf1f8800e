#pragma once

#include "fcp/audio/FCPAudioPlan.h"

#include <QStringList>

/// Plans as lines that a test can state: "20: talk 5 + 10" plays /m/talk.mov from second 5 for 10 seconds at second 20
/// of the plan, "20: talk 5 + 10 x 0.5" at half the level. Numbers have nine digits.
QStringList planText(const FCPAudioPlan &plan);

/// The lines of the plan of a document, or "! " and the message with which it is refused.
QStringList planText(const QByteArray &document);
