#pragma once

#include "app/Lintora/controls/Sheet.h"
#include "app/model/LintoraModel.h"

class ModelsPage;
class QStackedWidget;
class QTabBar;
class QuestionSheet;
class ServicePage;

/// The settings of local engines and online services, a page each.
class AISettingsSheet : public Sheet
{
    Q_OBJECT

public:
    /// `model` must live as long as this.
    AISettingsSheet(LintoraModel &model, QWidget *content);

    void present();

private:
    void confirmRemoval(const LocalModel &model);
    void confirmForgetting();
    void followTab();

    LintoraModel &m_model;
    QTabBar *m_tabs;
    QStackedWidget *m_pages;
    ModelsPage *m_models;
    ServicePage *m_text;
    ServicePage *m_speech;
    QuestionSheet *m_questions;
};
