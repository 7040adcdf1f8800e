#include "app/Lintora/SavedMark.h"

#include "app/Lintora/controls/Theme.h"

#include <QPainter>

using namespace Qt::StringLiterals;

using Saving = LintoraModel::Saving;

SavedMark::SavedMark(LintoraModel &model, QWidget *parent)
    : QWidget(parent)
    , m_model(model)
{
    setFixedSize(VELTheme::iconSize, VELTheme::iconSize);
    connect(&model, &LintoraModel::savingChanged, this, &SavedMark::follow);
    connect(&model, &LintoraModel::failureChanged, this, &SavedMark::follow);
    connect(&model, &LintoraModel::tracksChanged, this, &SavedMark::follow);
    follow();
}

void SavedMark::follow()
{
    switch (m_model.saving()) {
    case Saving::done:
        setAccessibleName(u"已保存"_s);
        setToolTip(u"所有修改都已自动保存，断电后也能找回"_s);
        break;
    case Saving::underWay:
        setAccessibleName(u"正在保存"_s);
        setToolTip(u"正在保存最近的修改"_s);
        break;
    case Saving::failing:
        setAccessibleName(u"尚未保存"_s);
        setToolTip(u"最近的修改还没有保存，会继续尝试；可先导出 SRT"_s);
        break;
    }
    setAccessibleDescription(toolTip());
    setVisible(m_model.isInUse());
    update();
}

void SavedMark::paintEvent(QPaintEvent * /*event*/)
{
    const VELTheme::Colors &colors = VELTheme::colors(*this);
    const bool fails = m_model.saving() == Saving::failing;
    const auto glyph = fails                                  ? VELTheme::Glyph::alert
                       : m_model.saving() == Saving::underWay ? VELTheme::Glyph::waiting
                                                              : VELTheme::Glyph::check;
    QPainter painter(this);
    VELTheme::paint(painter, glyph, rect(), fails ? colors.failure : colors.secondary);
}
