#include "app/Lintora/DragSubtitleCard.h"
#include "app/Lintora/UnifiedImportArea.h"
#include "app/LintoraContainer.h"

#include <QLabel>
#include <QVBoxLayout>

namespace {

/// Takes material in, and gives the selected track back.
QWidget *makePanel(LintoraModel &model)
{
    auto *const panel = new QWidget;
    auto *const layout = new QVBoxLayout(panel);
    layout->addWidget(new UnifiedImportArea(model, panel), 1);
    layout->addWidget(new DragSubtitleCard(model, std::nullopt, panel));
    auto *const status = new QLabel(panel);
    status->setWordWrap(true);
    const auto say = [status, &model] { status->setText(model.failure().value_or(model.message())); };
    QObject::connect(&model, &LintoraModel::messageChanged, status, say);
    QObject::connect(&model, &LintoraModel::failureChanged, status, say);
    say();
    layout->addWidget(status);
    return panel;
}

} // namespace

int main(int argc, char **argv)
{
    return LintoraContainer::main(argc, argv, makePanel);
}
