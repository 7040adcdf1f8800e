#include "app/Lintora/EngineState.h"

#include "ai/HelperPrograms.h"
#include "app/Lintora/controls/Theme.h"
#include "core/ConversionError.h"

using namespace Qt::StringLiterals;

namespace {

/// Why the local engines cannot work; empty when they can.
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

} // namespace

EngineState::EngineState(const AISettings &settings, QWidget *parent)
    : QLabel(parent)
    , m_settings(settings)
{
    setFont(VELTheme::smallFont());
    setProperty("secondary", true);
    setAccessibleName(u"引擎"_s);
    connect(&settings, &AISettings::choicesChanged, this, &EngineState::follow);
}

void EngineState::follow()
{
    const AIChoices &choices = m_settings.choices();
    if (choices.aiUseCloudSpeech || choices.aiUseOnline) {
        const bool isBoth = choices.aiUseCloudSpeech && choices.aiUseOnline;
        setText(isBoth ? u"● 在线服务"_s : u"● 本地引擎 · 在线服务"_s);
        setToolTip(isBoth                     ? u"识别、翻译和校对使用在线服务"_s
                   : choices.aiUseCloudSpeech ? u"识别使用在线服务，翻译和校对在本机完成"_s
                                              : u"识别在本机完成，翻译和校对使用在线服务"_s);
        return;
    }
    const QString why = fault();
    setText(why.isEmpty() ? u"● 本地引擎"_s : u"○ 本地引擎不完整"_s);
    setToolTip(why.isEmpty() ? u"识别、翻译和校对在本机完成"_s : why);
}

/// They may have been installed meanwhile.
void EngineState::showEvent(QShowEvent *event)
{
    QLabel::showEvent(event);
    follow();
}
