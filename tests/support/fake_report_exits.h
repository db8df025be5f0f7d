#pragma once

#include "platform/clipboard.h"
#include "platform/save_panel.h"
#include "platform/share_picker.h"

namespace netvane::test {

class FakeClipboard : public platform::Clipboard {
public:
    void setText(const QString& newText) override { text = newText; }

    QString text;
};

/// Open until the test calls `chosen`.
class FakeSavePanel : public platform::SavePanel {
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

class FakeSharePicker : public platform::SharePicker {
public:
    void show(const QString& newText) override { text = newText; }

    QString text;
};

} // namespace netvane::test
