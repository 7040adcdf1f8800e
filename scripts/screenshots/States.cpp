#include "scripts/screenshots/States.h"

#include "app/Lintora/cues/CueTable.h"
#include "app/Lintora/look/FontPicker.h"
#include "tests/support/Events.h"
#include "tests/support/HelperFolder.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>

using namespace Qt::StringLiterals;

namespace {

QList<Subtitle> interview(int rounds)
{
    struct Line
    {
        qint64 lengthMS;
        QString text;
    };
    const Line lines[] = {
        {1500, u"大家好，欢迎回来"_s},
        {1620, u"今天我们聊聊调色"_s},
        {2400, u"先看这一段素材，它是用 Log 拍的\nThis clip was shot in Log"_s},
        {600, u"灰"_s},
        {1800, u"嗯，直接看会觉得画面又灰又平，其实细节都还在里面没有丢掉"_s},
        {2200, u"第一步，把它转换到 Rec. 709"_s},
        {2600, u"转换之后，对比度和饱和度就回来了"_s},
        {1900, u"这时候先不要急着加 LUT"_s},
        {2100, u"我们来看一下示波器"_s},
        {2800, u"高光压到九十左右，阴影留一点余量"_s},
        {7600, u"肤色落在这条线附近，就不会偏得太离谱"_s},
        {2000, u"接下来处理天空"_s},
        {2300, u"用形状遮罩把天空单独选出来"_s},
        {2000, u"羽化给大一点，边缘才自然"_s},
        {2500, u"最后统一一下前后两个镜头"_s},
        {1700, u"好，今天就到这里"_s},
        {1600, u"我们下期再见"_s},
    };
    QList<Subtitle> cues;
    qint64 start = 1000;
    for (int round = 0; round < rounds; ++round) {
        for (const Line &line : lines) {
            cues += Subtitle{.id = cues.size() + 1, .start = start, .end = start + line.lengthMS, .text = line.text};
            start += line.lengthMS + (cues.size() % 3 == 0 ? 400 : 0);
        }
    }
    return cues;
}

QList<Subtitle> translated(const QList<Subtitle> &cues)
{
    QList<Subtitle> english = cues;
    for (Subtitle &cue : english)
        cue.text = u"Let us look at the scopes first"_s;
    return english;
}

LintoraSession loadedJob(int rounds = 18)
{
    LintoraSession job;
    job.source = u"访谈_粗剪_v3.srt"_s;
    job.removeFillers = true;
    const QList<Subtitle> cues = interview(rounds);
    job.tracks = QList<SubtitleTrack>{
        {.id = QUuid::createUuid(), .label = u"中文"_s, .items = cues, .options = job.options, .removeFillers = true},
        {.id = QUuid::createUuid(), .label = u"English"_s, .items = translated(cues), .options = job.options}};
    job.selectedTrackID = job.tracks->first().id;
    return job;
}

/// What recognition is played by: seven seconds of silence, then sound under the rest of the interview's first cues.
void playEngines(HelperFolder &helpers, const QStringList &recogniser)
{
    helpers.script(u"ffmpeg-audio"_s, {u"wav 7 30"_s});
    helpers.script(u"whisper-cli"_s, recogniser);
}

QString heard(const QList<Subtitle> &cues)
{
    QStringList segments;
    for (const Subtitle &cue : cues)
        segments += uR"({"offsets":{"from":%1,"to":%2},"text":"%3"})"_s.arg(cue.start).arg(cue.end).arg(
            QString(cue.text).replace(u'\n', u' '));
    return u"result {\"transcription\":["_s + segments.join(u',') + u"]}"_s;
}

/// Chooses models of the person's own, so that the engines have something to work with.
void chooseModels(LintoraModel &model, const HelperFolder &helpers)
{
    QFile file(helpers.file(u"ggml-访谈.bin"_s));
    if (file.open(QIODevice::WriteOnly))
        file.write("model");
    AIChoices choices = model.aiSettings().choices();
    choices.aiSpeechModelFile = file.fileName();
    choices.aiTextModelFile = file.fileName();
    model.aiSettings().choose(choices);
}

/// A models folder with a model, a broken one and a part of one. Their files are holes.
void layOutModels()
{
    const QDir folder(LocalModels::directory());
    folder.mkpath(u"."_s);
    const auto lay = [&](const QString &name, qint64 bytes) {
        QFile file(folder.filePath(name));
        if (file.open(QIODevice::WriteOnly))
            file.resize(bytes);
    };
    const QList<LocalModel> models = LocalModels::catalog();
    lay(models[0].filename, models[0].bytes);
    lay(models[1].filename, models[1].bytes / 2);
    lay(u".partial-"_s + models[3].sha256, models[3].bytes / 3);
}

void setUpServices(LintoraModel &model)
{
    model.aiSettings().choose({.aiUseCloudSpeech = true,
                               .aiUseOnline = true,
                               .aiAPIBaseURL = u"https://api.example.com/v1"_s,
                               .aiAPIModel = u"chat-large"_s});
    model.aiSettings().setKey(AISettings::Service::text, u"sk-0123456789abcdef"_s);
}

} // namespace

QList<State> states()
{
    const auto load = [](LintoraModel &model, LintoraPanel &panel) {
        model.apply(loadedJob());
        model.report(u"已载入"_s);
        panel.table().goTo(2);
    };
    return {
        {u"empty"_s, [](LintoraModel &, LintoraPanel &) {}},
        {u"loaded"_s, load},
        {u"editing"_s,
         [load](LintoraModel &model, LintoraPanel &panel) {
             load(model, panel);
             panel.table().editText(2);
         }},
        {u"time"_s,
         [load](LintoraModel &model, LintoraPanel &panel) {
             load(model, panel);
             CueTable &table = panel.table();
             table.setCurrentIndex(table.model()->index(4, CueTableModel::endColumn));
             static_cast<QAbstractItemView &>(table).edit(table.currentIndex());
             auto *const field = qobject_cast<QLineEdit *>(table.indexWidget(table.currentIndex()));
             QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
             field->insert(u"1:7x"_s);
             field->setModified(true);
             QApplication::sendEvent(field, &press);
         }},
        {u"confirm"_s,
         [load](LintoraModel &model, LintoraPanel &panel) {
             load(model, panel);
             LintoraSession job = loadedJob();
             job.splitOriginal = job.tracks->last().id;
             model.apply(job);
             Events::handle();
             for (QPushButton *const each : panel.findChildren<QPushButton *>()) {
                 if (each->text() == u"恢复原稿"_s)
                     each->click();
             }
         }},
        {u"find-replace"_s,
         [load](LintoraModel &model, LintoraPanel &panel) {
             load(model, panel);
             model.window().setFindReplaceVisible(true);
             const QList<QLineEdit *> fields = panel.findChildren<QLineEdit *>();
             for (QLineEdit *const field : fields) {
                 if (field->accessibleName() == u"关键词"_s)
                     field->setText(u"转换"_s);
                 if (field->accessibleName() == u"替换为（留空则删除关键词）"_s)
                     field->setText(u"还原"_s);
             }
         }},
        {u"script-match"_s,
         [](LintoraModel &model, LintoraPanel &) {
             model.apply(loadedJob(1));
             QString script;
             for (const Subtitle &cue : model.items())
                 script += QString(cue.text).replace(u"嗯，直接"_s, u"直接"_s).replace(u"聊聊调色"_s, u"聊一聊调色"_s);
             model.scriptMatching().setText(script + u"这一整段没有人说出来，只写在文稿里，留给下一期。"_s);
             model.window().setScriptMatchPresented(true);
             model.scriptMatching().match();
             Events::waitFor([&] { return !model.activity(); });
         }},
        {u"breaking"_s,
         [load](LintoraModel &model, LintoraPanel &panel) {
             load(model, panel);
             model.cueTools().open(CueTools::Tool::breaking);
             Events::waitFor([&] { return !model.activity(); });
         }},
        {u"checking"_s,
         [load](LintoraModel &model, LintoraPanel &panel) {
             load(model, panel);
             model.cueTools().open(CueTools::Tool::checking);
             Events::waitFor([&] { return !model.activity(); });
         }},
        {u"cleanup"_s,
         [load](LintoraModel &model, LintoraPanel &panel) {
             load(model, panel);
             model.window().setCleanupSettingsVisible(true);
         }},
        {u"failure"_s,
         [load](LintoraModel &model, LintoraPanel &panel) {
             load(model, panel);
             panel.table().goTo(10);
             model.reportFailure(
                 u"第 17 条字幕的结束时间早于开始时间，请修正后重新导入；文件其余部分没有改动，可用任何文本编辑器打开。"_s);
         }},
        {u"style"_s,
         [load](LintoraModel &model, LintoraPanel &panel) {
             load(model, panel);
             Options options = model.options();
             options.font = u"Noto Sans CJK SC"_s;
             options.fontSize = 96;
             options.strokeEnabled = true;
             model.setOptions(options);
             model.saveStylePreset(u"访谈 · 白字黑边"_s);
             options.fontColor = u"1 0.83 0 1"_s;
             options.shadowEnabled = true;
             model.setOptions(options);
             model.saveStylePreset(u"综艺黄字"_s);
             options.font = u"Noto Serif CJK SC"_s;
             options.fontColor = u"1 1 1 1"_s;
             options.strokeEnabled = false;
             options.shadowBlur = 12;
             model.setOptions(options);
             model.saveStylePreset(u"纪录片"_s);
             Events::waitFor([&] { return model.stylePresets().all().size() == 3; });
             model.window().setSettingsVisible(true);
         }},
        {u"style-name"_s,
         [load](LintoraModel &model, LintoraPanel &panel) {
             load(model, panel);
             model.window().setSettingsVisible(true);
             for (QPushButton *const button : panel.findChildren<QPushButton *>()) {
                 if (button->text() == u"保存预设…"_s)
                     button->click();
             }
         }},
        {u"style-portrait"_s,
         [load](LintoraModel &model, LintoraPanel &panel) {
             load(model, panel);
             panel.table().goTo(4);
             Options options = model.options();
             options.font = u"Noto Sans CJK SC"_s;
             options.width = 1080;
             options.height = 1920;
             options.fontSize = 64;
             options.shiftMS = -1500;
             model.setOptions(options);
             model.window().setSettingsVisible(true);
             for (QAbstractButton *const button : panel.findChildren<QAbstractButton *>()) {
                 if (button->accessibleName() == u"背景：灰阶"_s || button->accessibleName() == u"放大"_s ||
                     button->accessibleName() == u"给文字加描边"_s)
                     button->click();
             }
             QScrollBar &bar = *panel.findChild<QScrollArea *>()->verticalScrollBar();
             bar.setValue(bar.maximum() / 2);
             for (QLineEdit *const field : panel.findChildren<QLineEdit *>()) {
                 if (field->accessibleName() != u"描边宽度"_s)
                     continue;
                 field->setFocus();
                 field->selectAll();
                 field->insert(u"24"_s);
                 Q_EMIT field->textEdited(u"24"_s);
             }
         }},
        {u"style-fonts"_s,
         [load](LintoraModel &model, LintoraPanel &panel) {
             load(model, panel);
             model.window().setSettingsVisible(true);
             for (QComboBox *const box : panel.findChildren<QComboBox *>()) {
                 if (box->accessibleName() == u"字体"_s)
                     box->showPopup();
             }
             const auto *const list = panel.findChild<FontPicker *>()->findChild<QListView *>();
             Events::waitFor([&] { return list->model()->rowCount() > 0; });
             for (QLineEdit *const field : panel.findChildren<QLineEdit *>()) {
                 if (field->accessibleName() == u"查找字体"_s)
                     field->setText(u"noto"_s);
             }
             for (int i = 0; i < 60; ++i)
                 Events::handle();
         }},
        {u"speech"_s,
         [](LintoraModel &model, LintoraPanel &) { model.load(QUrl::fromLocalFile(u"/media/访谈_A机位_0417.mov"_s)); }},
        {u"speech-online"_s,
         [load](LintoraModel &model, LintoraPanel &panel) {
             load(model, panel);
             AIChoices choices = model.aiSettings().choices();
             choices.aiUseCloudSpeech = true;
             choices.aiSpeechBaseURL = u"https://speech.example.com/v1"_s;
             choices.aiAutomaticReview = true;
             model.aiSettings().choose(choices);
             FCPAudioPlan plan{.name = u"访谈_粗剪_v3"_s, .duration = 600, .hasAudioEffects = true};
             plan.segments += {.url = QUrl::fromLocalFile(u"/media/访谈_A机位.mov"_s), .duration = 600};
             plan.skippedRetimedAudio = {u"空镜"_s, u"延时"_s};
             model.recognition().setTimeline(plan);
             Events::waitFor([&] { return !model.recognition().missingMedia().isEmpty(); });
             model.showAI(WindowState::AIMode::speech);
         }},
        {u"speech-running"_s,
         [load](LintoraModel &model, LintoraPanel &panel) {
             load(model, panel);
             static HelperFolder helpers;
             chooseModels(model, helpers);
             playEngines(helpers, {u"print [00:00:00.000 --> 00:00:14.500]  大家好"_s, u"wait"_s});
             model.load(QUrl::fromLocalFile(u"/media/访谈_A机位_0417.mov"_s));
             model.recognition().start();
             Events::waitFor([&] { return model.aiWork().stages().progress().share.has_value(); });
         }},
        {u"suspects"_s,
         [](LintoraModel &model, LintoraPanel &panel) {
             static HelperFolder helpers;
             chooseModels(model, helpers);
             QList<Subtitle> cues = interview(1);
             cues[3].text = u"请不吝点赞 订阅 转发"_s;
             playEngines(helpers, {heard(cues)});
             model.load(QUrl::fromLocalFile(u"/media/访谈_A机位_0417.mov"_s));
             model.recognition().start();
             Events::waitFor([&] { return !model.aiBusy(); });
             panel.table().goTo(3);
         }},
        {u"translate"_s,
         [load](LintoraModel &model, LintoraPanel &panel) {
             load(model, panel);
             model.glossary().load();
             Events::waitFor([&] { return model.glossary().isLoaded(); });
             model.showAI(WindowState::AIMode::translation);
         }},
        {u"glossary"_s,
         [load](LintoraModel &model, LintoraPanel &panel) {
             load(model, panel);
             model.showAI(WindowState::AIMode::translation);
             Events::waitFor([&] { return model.glossary().isLoaded(); });
             for (QPushButton *const button : panel.findChildren<QPushButton *>()) {
                 if (button->text() == u"术语表…"_s)
                     button->click();
             }
             for (QPlainTextEdit *const text : panel.findChildren<QPlainTextEdit *>()) {
                 if (text->accessibleName() == u"术语"_s)
                     text->setPlainText(u"调色,color grading,后期\n示波器,scopes\n罗老师,Mr. Luo,受访人"_s);
             }
         }},
        {u"review"_s,
         [](LintoraModel &model, LintoraPanel &) {
             model.apply(loadedJob(1));
             const QList<Subtitle> cues = model.items();
             QList<Subtitle> heard = cues;
             heard[1].text = u"今天我们聊聊条色"_s;
             heard[5].text = u"第一步，把它转换到 Rec. 706"_s;
             heard[9].text = u"高光压到十九左右，阴影不留一点余量"_s;
             heard[11].text = u"接下来处理添空"_s;
             model.review().show(*model.selectedTrackID(), heard, cues);
             model.showAI(WindowState::AIMode::review);
         }},
        {u"models"_s,
         [load](LintoraModel &model, LintoraPanel &panel) {
             load(model, panel);
             layOutModels();
             model.aiSettings().choose(
                 {.aiSpeechModelID = u"base"_s, .aiTextModelFile = u"/Users/剪辑/模型/校对-8b.gguf"_s});
             model.showAISettings(WindowState::AISettingsTab::models);
         }},
        {u"text-service"_s,
         [load](LintoraModel &model, LintoraPanel &panel) {
             load(model, panel);
             setUpServices(model);
             model.showAISettings(WindowState::AISettingsTab::text);
             Events::waitFor([&] { return model.aiSettings().areKeysLoaded(); });
         }},
        {u"speech-service"_s,
         [load](LintoraModel &model, LintoraPanel &panel) {
             load(model, panel);
             setUpServices(model);
             model.showAISettings(WindowState::AISettingsTab::speech);
             Events::waitFor([&] { return model.aiSettings().areKeysLoaded(); });
             model.aiServices().tryOut(AISettings::Service::speech);
             Events::waitFor([&] { return !model.aiServices().onTrial(); });
         }},
        {u"fcp-import"_s, [](LintoraModel &model, LintoraPanel &) { model.showFCPImport(); }},
    };
}
