#include "app/Lintora/ai/KeyField.h"

#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/LineEdit.h"

#include <QLineEdit>

using namespace Qt::StringLiterals;

KeyField::KeyField(AISettings &settings, AISettings::Service service, QWidget *parent)
    : FieldRow(u"API 密钥"_s, parent)
    , m_settings(settings)
    , m_service(service)
    , m_edit(new LineEdit(this))
    , m_save(Controls::button({}, this))
{
    m_edit->setAccessibleName(u"API 密钥"_s);
    m_edit->setEchoMode(QLineEdit::Password);
    label()->setBuddy(m_edit);
    controls()->addWidget(m_edit, 1);
    controls()->addWidget(m_save);
    connect(m_edit, &QLineEdit::textEdited, this, [this](const QString &text) {
        setSentence({});
        m_settings.setKey(m_service, text);
    });
    const auto save = [this] {
        setSentence({});
        m_settings.saveKey(m_service);
    };
    connect(m_save, &QPushButton::clicked, this, save);
    connect(m_edit, &QLineEdit::returnPressed, this, [this, save] {
        if (m_save->isEnabled())
            save();
    });
    connect(&settings, &AISettings::keysChanged, this, &KeyField::follow);
    connect(&settings, &AISettings::keySaved, this, &KeyField::follow);
    connect(&settings, &AISettings::keyRefused, this, [this](AISettings::Service of, const Failure &failure) {
        if (of != m_service)
            return;
        setSentence(failure.sentence);
        setToolTip(failure.text());
    });
    follow();
}

const QString &KeyField::key() const
{
    return m_service == AISettings::Service::speech ? m_settings.aiSpeechAPIKey() : m_settings.aiAPIKey();
}

void KeyField::follow()
{
    // White space at the ends is no part of the key, and may be one of what is being typed.
    if (m_edit->text().trimmed() != key())
        m_edit->setText(key());
    const bool isSaved = m_settings.isSaved(m_service);
    const bool isEmpty = key().isEmpty();
    m_save->setText(isEmpty && !isSaved ? u"从钥匙串移除"_s : u"存入钥匙串"_s);
    m_save->setAccessibleName(m_save->text());
    // Before it goes by itself to whatever comes next.
    if (isSaved && m_save->hasFocus())
        m_edit->setFocus();
    m_save->setEnabled(!isSaved);
    setToolTip({});
    if (isSaved)
        setNote(isEmpty ? u"密钥只放在系统钥匙串，不写入设置文件。"_s : u"已存入系统钥匙串。"_s);
    else
        setNote(isEmpty ? u"钥匙串中仍有密钥。"_s : u"尚未存入钥匙串，退出后不保留。"_s);
}
