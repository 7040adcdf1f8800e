#include "store/DraftFile.h"
#include "tests/support/Generator.h"

#include <QFile>

#include <cstdio>

/// draft_writer FILE changes a session without end and saves every change, like a busy editor. The session's source is
/// the number of the change. Each line of its output is a number N: "the changes up to N have been saved". Ends only by
/// a signal, or with 1 when the draft that is there cannot be read. draft_writer --read FILE prints the newest change
/// in a draft.
int main(int argc, char **argv)
{
    if (argc == 3) {
        std::puts(qPrintable(LintoraSession::read(QFile::decodeName(argv[2])).source));
        return 0;
    }
    if (argc != 2)
        return 2;
    const QString path = QFile::decodeName(argv[1]);
    DraftFile draft(path);
    std::optional<LintoraSession> state = draft.load();
    if (!state && QFile::exists(path))
        return 1;
    if (!state)
        state = LintoraSession{.items = Generator(1).cues(3'000), .source = QStringLiteral("0")};
    for (qint64 change = state->source.toLongLong() + 1;; ++change) {
        state->source = QString::number(change);
        state->items[change % state->items.size()].text = state->source;
        draft.save(*state);
        // Most changes come while a save is under way.
        if (change % 20 != 0)
            continue;
        draft.flush();
        std::printf("%lld\n", static_cast<long long>(change));
        std::fflush(stdout);
    }
}
