#include "app/Lintora/ai/ModelsPage.h"

#include "app/Lintora/ai/ModelRow.h"
#include "app/Lintora/ai/OwnModel.h"
#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/TextField.h"

#include <QLineEdit>
#include <QRegularExpression>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

QStringList addresses(const QString &typed)
{
    static const QRegularExpression between(u"[\\s,，、;；]+"_s);
    return typed.split(between, Qt::SkipEmptyParts);
}

QString wrongAddress(const QString &typed)
{
    for (const QString &address : addresses(typed)) {
        if (!LocalModels::host(address))
            return u"需要 https 或 http 地址：%1"_s.arg(address);
    }
    return {};
}

QLabel *title(const QString &text, QWidget *parent)
{
    auto *const label = new QLabel(text, parent);
    QFont font = VELTheme::textFont();
    font.setWeight(QFont::DemiBold);
    label->setFont(font);
    return label;
}

} // namespace

ModelsPage::ModelsPage(LintoraModel &model, QWidget *parent)
    : QWidget(parent)
    , m_model(model)
{
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 3 * VELTheme::step, 0);
    layout->setSpacing(0);
    const auto addRow = [&](const LocalModel &each) {
        auto *const row = new ModelRow(m_model, each.id, this);
        connect(row, &ModelRow::removalRequested, this, [this, each] { Q_EMIT removalRequested(each); });
        if (!m_rows.isEmpty())
            layout->addWidget(Controls::rule(this));
        m_rows += row;
        layout->addWidget(row);
    };
    const auto isText = [](const ModelDownloads::Row &row) { return row.model == LocalModels::translation(); };
    const QList<ModelDownloads::Row> &rows = model.modelDownloads().rows();
    layout->addWidget(title(u"语音识别"_s, this));
    for (const ModelDownloads::Row &row : rows) {
        if (!isText(row))
            addRow(row.model);
    }
    layout->addWidget(new OwnModel(model, &AIChoices::aiSpeechModelFile, u"bin"_s, this));
    layout->addSpacing(VELTheme::gap);
    layout->addWidget(Controls::rule(this));
    layout->addSpacing(VELTheme::gap);
    layout->addWidget(title(u"翻译和校对"_s, this));
    for (const ModelDownloads::Row &row : rows) {
        if (isText(row))
            addRow(row.model);
    }
    layout->addWidget(new OwnModel(model, &AIChoices::aiTextModelFile, u"gguf"_s, this));
    layout->addSpacing(VELTheme::gap);
    layout->addWidget(Controls::rule(this));
    layout->addSpacing(VELTheme::gap);
    m_hosts = new TextField(u"下载来源"_s, wrongAddress, this);
    m_hosts->edit()->setPlaceholderText(LocalModels::defaultHosts().first().toString());
    m_hosts->setNote(u"可填镜像地址，多个用空格分隔，依次尝试；内容以校验为准。下载时只向来源请求模型文件。"_s);
    layout->addWidget(m_hosts);
    layout->addStretch();
    connect(m_hosts, &TextField::edited, this, [this](const QString &text) {
        AIChoices choices = m_model.aiSettings().choices();
        choices.aiModelHosts = addresses(text);
        m_model.aiSettings().choose(choices);
    });
    connect(&model.aiSettings(), &AISettings::choicesChanged, this, &ModelsPage::follow);
    follow();
}

QWidget *ModelsPage::first() const
{
    const auto usable = std::ranges::find_if(
        m_rows, [](const ModelRow *row) { return row->action()->isEnabled() && !row->action()->isHidden(); });
    return usable == m_rows.end() ? static_cast<QWidget *>(m_hosts->edit()) : (*usable)->action();
}

void ModelsPage::follow()
{
    m_hosts->setText(m_model.aiSettings().choices().aiModelHosts.join(u' '));
}
