#include "app/Lintora/Panel.h"
#include "app/window/LintoraContainer.h"

int main(int argc, char **argv)
{
    return LintoraContainer::main(argc, argv, [](LintoraModel &model) -> QWidget * { return new LintoraPanel(model); });
}
