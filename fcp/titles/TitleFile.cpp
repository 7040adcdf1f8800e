#include "fcp/titles/TitleFile.h"

#include "core/files/AtomicFile.h"
#include "core/files/Utf8Writer.h"
#include "fcp/titles/TitleDocument.h"

namespace TitleFile {

void write(const QString &path, const TitleDocument &document, const Proof &proof, const std::function<void()> &check)
{
    AtomicFile file(path);
    Utf8Writer out([&](QByteArrayView block) {
        check();
        file.write(block);
    });
    document.write(out);
    file.sync();
    proof(file.readBack(check));
    check();
    file.commit(AtomicFile::Durability::powerCut);
}

} // namespace TitleFile
