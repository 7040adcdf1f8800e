#include "app/model/ai/AISettings.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace {

QString account(AISettings::Service service)
{
    return service == AISettings::Service::speech ? AIKeychain::speechAccount : AIKeychain::textAccount;
}

} // namespace

AISettings::AISettings(std::shared_ptr<QSettings> settings, AIKeyStore keys)
    : m_settings(std::move(settings))
    , m_keys(std::move(keys))
    , m_choices(AIChoices::read(*m_settings))
{}

void AISettings::choose(const AIChoices &choices)
{
    if (choices == m_choices)
        return;
    choices.write(*m_settings, std::exchange(m_choices, choices));
    Q_EMIT choicesChanged();
}

void AISettings::loadKeys()
{
    if (std::exchange(m_areAsked, true))
        return;
    m_task.run(
        u"正在读取钥匙串…"_s,
        [read = m_keys.read](Job & /*job*/, const ProgressReport & /*report*/) {
            return std::pair(read(account(Service::speech)), read(account(Service::text)));
        },
        [this](const std::pair<QString, QString> &kept) {
            take(m_speech, kept.first);
            take(m_text, kept.second);
            m_areLoaded = true;
            Q_EMIT keysChanged();
        },
        [](const Failure & /*failure*/) {}); // A keychain that cannot be read holds no key.
}

void AISettings::take(Key &key, const QString &kept)
{
    key.kept = kept;
    if (!key.isTyped)
        key.value = kept;
}

void AISettings::setKey(Service service, const QString &typedKey)
{
    const QString value = typedKey.trimmed();
    Key &changed = key(service);
    changed.isTyped = true;
    if (changed.value == value)
        return;
    changed.value = value;
    Q_EMIT keysChanged();
}

std::function<QString()> AISettings::keyForWork(Service service) const
{
    const Key &wanted = key(service);
    if (m_areLoaded || wanted.isTyped)
        return [value = wanted.value] { return value; };
    return [read = m_keys.read, service] { return read(account(service)); };
}

bool AISettings::isSaved(Service service) const
{
    return key(service).value == key(service).kept;
}

void AISettings::saveKey(Service service)
{
    m_task.run(
        u"正在保存密钥…"_s,
        [save = m_keys.save, value = key(service).value, service](Job & /*job*/, const ProgressReport & /*report*/) {
            save(value, account(service));
            return value;
        },
        [this, service](const QString &saved) {
            key(service).kept = saved;
            Q_EMIT keySaved(service);
        },
        [this, service](const Failure &failure) { Q_EMIT keyRefused(service, failure); });
}
