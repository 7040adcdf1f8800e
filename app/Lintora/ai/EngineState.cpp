#include "app/Lintora/ai/EngineState.h"

#include "ai/HelperPrograms.h"
#include "ai/ServiceAddress.h"
#include "app/Lintora/controls/Theme.h"
#include "core/ConversionError.h"

#include <QEvent>
#include <QFileInfo>
#include <QPainter>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// What one kind of work is done by.
struct Engine
{
    bool isReady = false;
    QString words;
};

Engine service(const QString &address, const QString &name)
{
    const auto url = ServiceAddress::parse(address);
    if (!url || name.isEmpty())
        return {.isReady = false, .words = u"在线服务 · 尚未设置"_s};
    return {.isReady = true, .words = u"在线服务 · "_s + url->host()};
}

/// Why the local engines cannot work at all; empty when they can.
QString fault()
{
    try {
        for (const QString &name : {u"ffmpeg-audio"_s, u"whisper-cli"_s, u"llama-server"_s})
            LocalModels::helper(name);
    } catch (const ConversionError &error) {
        return error.message();
    }
    return {};
}

Engine local(const QString &ownFile, const QString &id, const ModelDownloads &models)
{
    if (const QString why = fault(); !why.isEmpty())
        return {.isReady = false, .words = why};
    if (!ownFile.isEmpty()) {
        const QFileInfo file(ownFile);
        return {.isReady = file.isFile(), .words = u"本机 · "_s + file.fileName()};
    }
    const QList<ModelDownloads::Row> &rows = models.rows();
    const auto row = std::ranges::find_if(rows, [&](const ModelDownloads::Row &each) { return each.model.id == id; });
    if (row == rows.end())
        return {};
    return {.isReady = row->isReady, .words = u"本机 · %1 · %2"_s.arg(row->model.title, row->status)};
}

} // namespace

EngineState::EngineState(LintoraModel &model, QWidget *parent)
    : QPushButton(parent)
    , m_model(model)
{
    setProperty("quiet", true);
    setFocusPolicy(Qt::StrongFocus);
    setAutoDefault(true);
    connect(this, &QPushButton::clicked, &model, qOverload<>(&LintoraModel::showAISettings));
    connect(&model, &LintoraModel::aiBusyChanged, this, &EngineState::follow);
    connect(&model.aiSettings(), &AISettings::choicesChanged, this, &EngineState::follow);
    connect(&model.modelDownloads(), &ModelDownloads::rowsChanged, this, &EngineState::follow);
    follow();
}

void EngineState::follow()
{
    const AIChoices &choices = m_model.aiSettings().choices();
    const ModelDownloads &models = m_model.modelDownloads();
    const Engine speech =
        choices.aiUseCloudSpeech
            ? service(choices.aiSpeechBaseURL, choices.aiSpeechAPIModel)
            : local(choices.aiSpeechModelFile, LocalModels::speechModel(choices.aiSpeechModelID).id, models);
    const Engine texts = choices.aiUseOnline ? service(choices.aiAPIBaseURL, choices.aiAPIModel)
                                             : local(choices.aiTextModelFile, LocalModels::translation().id, models);
    const bool isOnline = choices.aiUseCloudSpeech && choices.aiUseOnline;
    const bool isMixed = choices.aiUseCloudSpeech != choices.aiUseOnline;
    setText(isMixed ? u"本地 + 在线"_s : isOnline ? u"在线服务"_s : u"本地引擎"_s);
    m_state = m_model.aiBusy() ? State::busy : speech.isReady && texts.isReady ? State::ready : State::missing;
    const QString state = m_state == State::busy    ? u"正在处理"_s
                          : m_state == State::ready ? u"可以使用"_s
                                                    : u"尚未就绪，点击设置"_s;
    setToolTip(u"%1\n语音识别：%2\n翻译和校对：%3"_s.arg(state, speech.words, texts.words));
    setAccessibleName(u"引擎：%1，%2"_s.arg(text(), state));
    setAccessibleDescription(toolTip());
    drawDot();
}

/// Helpers may have been installed meanwhile.
void EngineState::showEvent(QShowEvent *event)
{
    QPushButton::showEvent(event);
    follow();
}

void EngineState::changeEvent(QEvent *event)
{
    QPushButton::changeEvent(event);
    if (event->type() == QEvent::StyleChange || event->type() == QEvent::PaletteChange)
        drawDot();
}

void EngineState::drawDot()
{
    const VELTheme::Colors &colors = VELTheme::colors(*this);
    constexpr int side = 8;
    QPixmap dot(QSize(side, side) * devicePixelRatioF());
    dot.setDevicePixelRatio(devicePixelRatioF());
    dot.fill(Qt::transparent);
    QPainter painter(&dot);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(m_state == State::missing ? colors.warning
                     : m_state == State::busy  ? colors.accent
                                               : colors.ready);
    painter.drawEllipse(QRectF(0, 0, side, side));
    painter.end();
    setIcon(QIcon(dot));
    setIconSize({side, side});
}
