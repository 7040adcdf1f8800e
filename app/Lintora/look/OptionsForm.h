#pragma once

#include "app/Lintora/controls/ValueField.h"
#include "app/model/LintoraModel.h"

class CheckBox;
class ColorField;
class QVBoxLayout;
class TextField;

/// Controls over the options of the selected track. They show what the model holds, whoever changed it, and each change
/// that a person makes with them is one step of the history.
class OptionsForm : public QWidget
{
    Q_OBJECT

public:
    /// `model` must live as long as this.
    explicit OptionsForm(LintoraModel &model, QWidget *parent = nullptr);

Q_SIGNALS:
    void previewed(const Options &options); ///< How it would be with something that is not chosen yet.
    void previewEnded();                    ///< Nothing came of it.

protected:
    using Change = std::function<void(Options &)>;
    using Follow = std::function<void(const Options &)>;

    LintoraModel &model() const { return m_model; }
    QVBoxLayout *rows() const { return m_rows; }

    void addHeading(const QString &text);
    ValueField *addValue(const ValueEdit::Kind &kind, ValueField::Reach reach, double Options::*field);
    ColorField *addColor(const QString &name, QString Options::*field);
    CheckBox *addSwitch(const QString &text, bool Options::*field);
    TextField *addText(const QString &name, std::function<QString(const QString &)> judge);

    void connectGestures(const ValueField &field);
    void whenChanged(const Follow &follow); ///< Calls it with the options now and whenever they change.
    void change(const Change &change);

private:
    void follow();

    LintoraModel &m_model;
    QVBoxLayout *m_rows;
    QList<Follow> m_followers;
    bool m_isGesture = false;
    bool m_isChanging = false;
};
