#include "app/Lintora/Panel.h"
#include "app/Lintora/sound/MediaLibrary.h"
#include "app/window/LintoraContainer.h"

namespace {

/// Once there is sound to be seen, it will be played.
void prepareToPlay(LintoraModel &model, QObject *panel)
{
    const auto *const sound = &model.sound();
    QObject::connect(sound, &Sound::waveformChanged, panel, [sound, isPrepared = false]() mutable {
        if (!isPrepared && !sound->waveform().isEmpty())
            MediaLibrary::prepare();
        isPrepared = isPrepared || !sound->waveform().isEmpty();
    });
}

} // namespace

int main(int argc, char **argv)
{
    return LintoraContainer::main(argc, argv, [](LintoraModel &model) -> QWidget * {
        auto *const panel = new LintoraPanel(model);
        prepareToPlay(model, panel);
        return panel;
    });
}
