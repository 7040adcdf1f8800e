#pragma once

#include "app/model/ai/AISettings.h"
#include "core/ConversionError.h"

#include <QMap>
#include <QSemaphore>

#include <memory>
#include <mutex>

/// A keychain in memory, for models that a test makes. It can be locked, and be made to wait for a person.
class MemoryKeys
{
public:
    AIKeyStore store() const
    {
        return {
            .read = [chain = m_chain](const QString &account) { return chain->read(account); },
            .save = [chain = m_chain](const QString &value, const QString &account) { chain->save(value, account); }};
    }

    QString key(const QString &account) const { return m_chain->read(account); }
    void set(const QString &account, const QString &key) { m_chain->save(key, account); }
    void lock()
    {
        m_chain->change([](Chain &chain) { chain.isLocked = true; });
    }                 ///< Nothing can be saved.
    int reads() const ///< How often somebody asked, key() included.
    {
        const std::lock_guard lock(m_chain->mutex);
        return m_chain->reads;
    }

private:
    struct Chain
    {
        QString read(const QString &account)
        {
            const std::lock_guard lock(mutex);
            ++reads;
            return keys.value(account);
        }
        void save(const QString &value, const QString &account)
        {
            const std::lock_guard lock(mutex);
            if (isLocked)
                throw ConversionError(QStringLiteral("钥匙串未能保存密钥。"), QStringLiteral("locked"));
            if (value.isEmpty())
                keys.remove(account);
            else
                keys[account] = value;
        }
        template <class Change>
        void change(const Change &with)
        {
            const std::lock_guard lock(mutex);
            with(*this);
        }

        std::mutex mutex; ///< Guards what follows.
        QMap<QString, QString> keys;
        bool isLocked = false;
        int reads = 0;
    };

    std::shared_ptr<Chain> m_chain = std::make_shared<Chain>();
};
