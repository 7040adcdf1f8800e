#pragma once

#include "app/model/LintoraModel.h"
#include "tests/support/Events.h"

#include <QPointer>
#include <QSemaphore>

#include <memory>
#include <utility>

/// Long work that owns a model's cues until it is told to end, or cancelled.
class OwnedCues
{
public:
    explicit OwnedCues(LintoraModel &model)
        : m_model(&model)
    {
        m_begun = model.ownCues(
            QStringLiteral("正在占用字幕…"),
            [goOn = m_goOn](Job &job, const ProgressReport & /*report*/) {
                const Job::OnCancel wake(job, [&] { goOn->release(); });
                goOn->acquire();
                return 0;
            },
            [](int /*result*/) {});
    }

    ~OwnedCues() { end(); }
    OwnedCues(const OwnedCues &) = delete;
    OwnedCues &operator=(const OwnedCues &) = delete;

    /// Lets it end by itself. Returns when the cues are free.
    void end()
    {
        if (!std::exchange(m_begun, false))
            return;
        m_goOn->release();
        Events::waitFor([this] { return !m_model || !m_model->aiBusy(); });
    }

private:
    QPointer<LintoraModel> m_model;
    std::shared_ptr<QSemaphore> m_goOn = std::make_shared<QSemaphore>();
    bool m_begun = false;
};
