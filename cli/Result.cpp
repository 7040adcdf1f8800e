#include "cli/Result.h"

#include "cli/Interrupt.h"
#include "cli/StandardStreams.h"
#include "core/files/AtomicFile.h"

namespace Result {

namespace {

/// Writes `content`; `beforeCommit` may still fail and leave an output file as it was.
void write(const Arguments::Output &output, const std::function<void(Utf8Writer &)> &content,
           const std::function<void()> &beforeCommit)
{
    const QString path = Arguments::toPath(output.path);
    const auto writeTo = [&](const Utf8Writer::Sink &sink) {
        Utf8Writer out(sink);
        content(out);
        out.finish();
    };
    if (path.isEmpty()) {
        writeTo(StandardStreams::write);
    } else if (StandardStreams::isPipe(path)) {
        const StandardStreams::Pipe pipe(path);
        writeTo([&](QByteArrayView block) { pipe.write(block); });
        beforeCommit();
    } else {
        AtomicFile file(path);
        writeTo([&](QByteArrayView block) {
            Interrupt::check();
            file.write(block);
        });
        beforeCommit();
        Interrupt::check();
        file.commit();
    }
}

} // namespace

void writeJson(const std::function<void(JsonWriter &)> &content)
{
    Utf8Writer out(StandardStreams::write);
    JsonWriter json(out);
    content(json);
    out.bytes("\n");
    out.finish();
}

void write(const Arguments::Output &output, const std::function<void(Utf8Writer &)> &content)
{
    write(output, content, [] {});
}

void deliver(const Arguments::Output &output, const std::function<void(Utf8Writer &)> &content,
             const std::function<void(JsonWriter &)> &json)
{
    const auto sayJson = [&] {
        if (output.json)
            writeJson(json);
    };
    if (output.json && output.path.empty())
        sayJson();
    else
        write(output, content, sayJson);
}

} // namespace Result
