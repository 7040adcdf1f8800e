#pragma once

#include "app/model/ai/AISettings.h"

#include <array>
#include <optional>

/// What is asked of the online services beside the work itself: whether they do what the program needs, as they are set
/// up now, and that what they answered to unfinished work is forgotten.
///
/// Lives on the main thread, which never waits.
class AIServices : public QObject
{
    Q_OBJECT

public:
    using Service = AISettings::Service;

    struct Verdict
    {
        bool isGood = false;
        QString sentence;    ///< What is wrong, or how long it took.
        QString detail = {}; ///< What goes with it; mostly empty.
    };

    /// `settings` must live as long as this.
    explicit AIServices(AISettings &settings);

    /// Asks the service for very little. A trial that is under way is given up.
    void tryOut(Service service);
    void cancelTrial();

    std::optional<Service> onTrial() const { return m_onTrial; }

    /// Of the last trial; absent when there was none since something about the service was changed.
    const std::optional<Verdict> &verdict(Service service) const { return m_verdicts.at(size_t(service)); }

    void forgetAnswers();

    BackgroundTask &task() { return m_task; }

Q_SIGNALS:
    void changed(); ///< What is on trial, or a verdict.
    void done(const QString &message);

private:
    void judge(Service service, const Verdict &verdict);
    void followSettings();

    AISettings &m_settings;
    AIChoices m_choices; ///< As they were last.
    std::array<QString, 2> m_keys;
    bool m_wereKeysLoaded;
    std::array<std::optional<Verdict>, 2> m_verdicts;
    std::optional<Service> m_onTrial;
    BackgroundTask m_task{BackgroundTask::Order::newestOnly};
    BackgroundTask m_forgetting{BackgroundTask::Order::oneAfterAnother};
};
