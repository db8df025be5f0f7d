// The settings file, which others may have written.
#include "desktop/settings_file.h"
#include "fuzz_target.h"

#include <QJsonDocument>

using namespace netvane;
using State = desktop::SettingsContent::State;

void netvane::fuzz::tryInput(FuzzedDataProvider& input)
{
    const QByteArray bytes = fuzz::takeRest(input);
    const auto content = desktop::settingsContent(bytes);
    fuzz::require(
        (content.state == State::Readable) == content.problem.isEmpty(), "it says why not");
    fuzz::require(content.state == State::Readable || content.values.isEmpty(), "all or nothing");
    // What is written back says the same.
    const auto again = desktop::settingsContent(QJsonDocument(content.values).toJson());
    fuzz::require(
        again.state == State::Readable && again.values == content.values, "nothing is lost");
}
