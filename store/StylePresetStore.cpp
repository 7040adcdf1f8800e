#include "store/StylePresetStore.h"

#include "core/Failure.h"
#include "core/files/AtomicFile.h"
#include "core/files/FileReader.h"
#include "core/files/Folder.h"
#include "core/json/JsonReader.h"
#include "core/json/JsonWriter.h"
#include "store/Locations.h"

#include <QDeadlineTimer>
#include <QFileInfo>
#include <QLockFile>
#include <QSet>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

ConversionError tooLarge()
{
    return ConversionError(u"样式预设文件过大。"_s);
}

void check(const QList<SubtitleStylePreset> &presets)
{
    QSet<QUuid> ids;
    for (const SubtitleStylePreset &preset : presets)
        ids.insert(preset.id);
    if (presets.size() > StylePresetStore::mostPresets || ids.size() < presets.size())
        throw ConversionError(u"样式预设数量或编号无效。"_s);
    for (const SubtitleStylePreset &preset : presets)
        preset.validate();
}

} // namespace

StylePresetStore::StylePresetStore()
    : m_file(Locations::stylePresets())
{}

StylePresetStore::StylePresetStore(QString file)
    : m_file(std::move(file))
{}

QList<SubtitleStylePreset> StylePresetStore::load() const
{
    const QFileInfo file(m_file);
    if (!file.exists() && !file.isSymLink())
        return {};
    // Opening a pipe might wait forever; a folder is refused by the platform in its own words.
    if (file.exists() && !file.isFile() && !file.isDir())
        throw PlatformError(u"“%1”不是普通文件。"_s.arg(m_file));
    return Failure::naming(m_file, [&] {
        const std::optional<QByteArray> bytes = FileReader::readUpTo(m_file, sizeLimit);
        if (!bytes)
            throw tooLarge();
        return decode(*bytes);
    });
}

QList<SubtitleStylePreset> StylePresetStore::decode(QByteArrayView data)
{
    if (data.size() > sizeLimit)
        throw tooLarge();
    JsonReader json(data);
    QList<SubtitleStylePreset> presets = readSubtitleStylePresets(json);
    json.finish();
    check(presets);
    return presets;
}

void StylePresetStore::save(const QList<SubtitleStylePreset> &presets) const
{
    if (presets.size() > mostPresets)
        throw ConversionError(u"最多可保存 100 个样式预设。"_s);
    check(presets);
    const QByteArray bytes = jsonBytes([&](JsonWriter &json) { writeSubtitleStylePresets(json, presets); });
    if (bytes.size() > sizeLimit)
        throw tooLarge();
    load();
    Folder::make(QFileInfo(m_file).path());
    AtomicFile file(m_file);
    file.write(bytes);
    file.commit();
}

QList<SubtitleStylePreset>
StylePresetStore::update(const std::function<QList<SubtitleStylePreset>(const QList<SubtitleStylePreset> &)> &change,
                         const Check &check) const
{
    Folder::make(QFileInfo(m_file).path());
    QLockFile lock(m_file + u".lock"_s);
    constexpr int patience = 10'000; // milliseconds; a change takes a few
    constexpr int pause = 50;        // milliseconds between two checks
    const QDeadlineTimer deadline(patience);
    // Where no lock can be made no file can be written either, and saving says why.
    while (!lock.tryLock(pause) && lock.error() == QLockFile::LockFailedError && !deadline.hasExpired()) {
        if (check)
            check();
    }
    if (!lock.isLocked() && lock.error() == QLockFile::LockFailedError)
        throw PlatformError(u"样式预设正被另一个程序使用，请稍后再试。"_s);
    QList<SubtitleStylePreset> presets = change(load());
    save(presets);
    return presets;
}
