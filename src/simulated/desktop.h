#pragma once

#include "platform/appearance.h"
#include "platform/exports.h"
#include "platform/instance_claim.h"
#include "platform/status_notifier_host.h"
#include "platform/url_opener.h"
#include "platform/user_defaults.h"
#include "platform/verdict_outlet.h"

#include <QHash>
#include <QList>
#include <QVariant>

namespace netvane::simulated {

// The services of a desktop, as values in memory. Main thread.

class Appearance final : public platform::Appearance {
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

/// A panel for status items; not known at first.
class StatusNotifierHost final : public platform::StatusNotifierHost {
public:
    std::optional<bool> isPresent() const override { return m_isPresent; }
    void setPresent(bool isPresent)
    {
        m_isPresent = isPresent;
        Q_EMIT presenceChanged();
    }

private:
    std::optional<bool> m_isPresent;
};

/// Each copy is the first.
class InstanceClaim final : public platform::InstanceClaim {
public:
    void claim(const QString& /*action*/) override
    {
        QMetaObject::invokeMethod(
            this, [this] { Q_EMIT decided(true); }, Qt::QueuedConnection);
    }
};

class VerdictOutlet final : public platform::VerdictOutlet {
public:
    void publish(const platform::PublishedVerdict& verdict) override { published = verdict; }

    platform::PublishedVerdict published;
};

class UrlOpener final : public platform::UrlOpener {
public:
    bool openUrl(const QUrl& url) override
    {
        opened.append(url);
        if (whenOpened)
            whenOpened(url);
        return true;
    }

    QList<QUrl> opened;
    std::function<void(const QUrl&)> whenOpened;
};

class UserDefaults final : public platform::UserDefaults {
public:
    std::optional<bool> boolean(const QString& key) const override { return valueOf<bool>(key); }
    std::optional<QString> text(const QString& key) const override { return valueOf<QString>(key); }
    void setBoolean(const QString& key, bool value) override { values[key] = value; }
    void setText(const QString& key, const QString& value) override { values[key] = value; }
    void editText(const QString& key, const platform::TextEdit& edit) override
    {
        values[key] = edit(text(key));
    }
    void remove(const QString& key) override { values.remove(key); }

    QHash<QString, QVariant> values;

private:
    template <typename T>
    std::optional<T> valueOf(const QString& key) const
    {
        const QVariant value = values.value(key);
        return value.metaType() == QMetaType::fromType<T>() ? std::optional(value.value<T>())
                                                            : std::nullopt;
    }
};

class Clipboard final : public platform::Clipboard {
public:
    void setText(const QString& newText) override { text = newText; }

    QString text;
};

/// Stays open until the test calls `chosen`.
class SavePanel final : public platform::SavePanel {
public:
    void show(const QString& newTitle, const QString& newFileName, Answer newChosen) override
    {
        title = newTitle;
        fileName = newFileName;
        chosen = std::move(newChosen);
    }

    QString title;
    QString fileName;
    Answer chosen;
};

class SharePicker final : public platform::SharePicker {
public:
    void show(const QString& newText) override { text = newText; }

    QString text;
};

} // namespace netvane::simulated
