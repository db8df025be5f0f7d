#pragma once

#include "platform/appearance.h"

namespace netvane::test {

class FakeAppearance final : public platform::Appearance {
public:
    platform::ColorScheme colorScheme() const override { return m_scheme; }
    void setColorScheme(platform::ColorScheme scheme)
    {
        m_scheme = scheme;
        Q_EMIT colorSchemeChanged();
    }

private:
    platform::ColorScheme m_scheme = platform::ColorScheme::Light;
};

} // namespace netvane::test
