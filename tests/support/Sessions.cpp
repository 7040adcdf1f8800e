#include "tests/support/Sessions.h"

using namespace Qt::StringLiterals;

namespace Sessions {

namespace {

Options unusualOptions()
{
    return {.rate = FrameRate::all()[3],
            .width = 1080,
            .height = 1920,
            .font = u"思源黑体"_s,
            .fontSize = 60.1,
            .fontColor = u"1 0.5 0 1"_s,
            .strokeEnabled = true,
            .strokeColor = u"0 0 1 1"_s,
            .strokeWidth = 0.1,
            .shadowEnabled = true,
            .shadowColor = u"0 0 0 0.5"_s,
            .shadowBlur = 1e-7,
            .bottomPercent = 12.5,
            .shiftMS = -9'007'199'254'740'993,
            .name = u"片名"_s,
            .titleRole = u"titles.中文"_s,
            .fontFace = u"Bold"_s};
}

SubtitleTrack track(const QUuid &id, const QString &label)
{
    return {.id = id,
            .label = label,
            .items = {{.id = 1, .start = 0, .end = 1'500, .text = label}},
            .options = unusualOptions(),
            .removeFillers = true,
            .removePunctuation = true,
            .previousItems = QList<Subtitle>{{.id = 7, .start = 1, .end = 2, .text = u"嗯，"_s + label}},
            .cleaned = true};
}

} // namespace

LintoraSession full()
{
    const QUuid chinese(u"0f1e2d3c-4b5a-6978-8796-a5b4c3d2e1f0"_s);
    const QUuid english(u"11111111-2222-3333-4444-555555555555"_s);
    return {.items = {{.id = 1, .start = -5, .end = 1'500, .text = u"你好\n\"Velmora\"\\\t/\u0001😀"_s},
                      {.id = 9'223'372'036'854'775'807, .start = 1'500, .end = 9'007'199'254'740'993, .text = {}}},
            .source = u"访谈.srt"_s,
            .options = unusualOptions(),
            .removeFillers = true,
            .removePunctuation = true,
            .previousItems = QList<Subtitle>(),
            .cleaned = true,
            .tracks = QList<SubtitleTrack>{track(chinese, u"中文"_s), track(english, u"English"_s)},
            .selectedTrackID = chinese,
            .splitOriginal = english};
}

LintoraSession uniform(const QString &source, qsizetype cues)
{
    LintoraSession session{.source = source};
    for (qsizetype i = 0; i < cues; ++i)
        session.items.append({.id = i + 1, .start = i * 1'000, .end = i * 1'000 + 500, .text = source});
    return session;
}

bool isUniform(const LintoraSession &session)
{
    return session == uniform(session.source, session.items.size());
}

} // namespace Sessions
