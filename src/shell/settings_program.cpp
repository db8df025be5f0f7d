#include "shell/settings_program.h"

#include <array>

using namespace Qt::Literals::StringLiterals;

namespace netvane::shell {
namespace {

struct Page {
    QLatin1StringView desktop;
    QLatin1StringView program;
    QLatin1StringView argument; ///< none when empty
};

constexpr std::array kPages {
    Page {"GNOME"_L1, "gnome-control-center"_L1, "wifi"_L1},
    Page {"Unity"_L1, "gnome-control-center"_L1, "wifi"_L1},
    Page {"KDE"_L1, "systemsettings"_L1, "kcm_networkmanagement"_L1},
    Page {"X-Cinnamon"_L1, "cinnamon-settings"_L1, "network"_L1},
    // The rest have none of their own; NetworkManager's editor serves them all.
    Page {""_L1, "nm-connection-editor"_L1, ""_L1},
};

} // namespace

std::optional<SettingsProgram> settingsProgram(
    const QString& desktops, const std::function<QString(const QString&)>& find)
{
    const QStringList names = desktops.split(u':', Qt::SkipEmptyParts);
    std::optional<SettingsProgram> other;
    for (const Page& page : kPages) {
        const QString path = find(page.program);
        if (path.isEmpty())
            continue;
        const SettingsProgram program {
            path, page.argument.isEmpty() ? QStringList() : QStringList {page.argument}};
        if (names.contains(page.desktop))
            return program;
        if (!other)
            other = program;
    }
    return other;
}

} // namespace netvane::shell
