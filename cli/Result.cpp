#include "cli/Result.h"

#include "cli/Interrupt.h"
#include "cli/StandardStreams.h"
#include "core/AtomicFile.h"

namespace Result {

void write(const Arguments::Output &output, const std::function<void(Utf8Writer &)> &content)
{
    if (output.path.empty()) {
        Utf8Writer out(StandardStreams::write);
        content(out);
        out.finish();
        return;
    }
    AtomicFile file(Arguments::toPath(output.path));
    Utf8Writer out([&](QByteArrayView block) {
        Interrupt::check();
        file.write(block);
    });
    content(out);
    out.finish();
    Interrupt::check();
    file.commit();
}

void writeJson(const std::function<void(JsonWriter &)> &content)
{
    Utf8Writer out(StandardStreams::write);
    JsonWriter json(out);
    content(json);
    out.bytes("\n");
    out.finish();
}

void deliver(const Arguments::Output &output, const std::function<void(Utf8Writer &)> &content,
             const std::function<void(JsonWriter &)> &json)
{
    if (!output.json || !output.path.empty())
        write(output, content);
    if (output.json)
        writeJson(json);
}

} // namespace Result
