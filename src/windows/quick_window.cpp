#include "windows/quick_window.h"

#include "ui/painting/theme.h"

#include <QAction>
#include <QKeyEvent>
#include <QMenu>
#include <QQmlComponent>
#include <QQuickItem>

#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace netvane::windows {
namespace {

constexpr double kLargest = 32767; // what window systems count with

/// Tells of the Escape that its view left alone.
class View final : public QQuickView {
public:
    View(QQmlEngine& engine, QuickWindow& owner)
        : QQuickView(&engine, nullptr)
        , m_owner(owner)
    {
    }

protected:
    void keyPressEvent(QKeyEvent* event) override
    {
        QQuickView::keyPressEvent(event);
        if (event->isAccepted() || event->key() != Qt::Key_Escape)
            return;
        event->accept();
        Q_EMIT m_owner.cancelled();
    }

private:
    QuickWindow& m_owner;
};

} // namespace

QuickWindow::QuickWindow(ui::ViewEngine& engine, const QMenu& menu, Content content)
    : m_engine(engine)
    , m_state(std::move(content.state))
    , m_view(std::make_unique<View>(engine, *this))
{
    m_view->setResizeMode(QQuickView::SizeRootObjectToView);
    m_view->setInitialProperties(content.properties);
    m_view->setSource(content.source);
    if (auto* root = m_view->rootObject())
        connect(
            root, &QQuickItem::implicitHeightChanged, this, &QuickWindow::preferredHeightChanged);
    paintBackground();
    connect(&engine.theme(), &ui::Theme::schemeChanged, this, &QuickWindow::paintBackground);
    for (auto* action : menu.actions())
        addShortcut(*action);
}

QuickWindow::~QuickWindow()
{
    releaseView();
}

void QuickWindow::releaseView()
{
    m_view->setSource({});
    m_state.reset();
}

void QuickWindow::paintBackground()
{
    if (m_view->color().alpha() > 0) // else the view has a background of its own
        m_view->setColor(m_engine.theme().controlBackground());
}

QObject* QuickWindow::make(const QString& component, const QVariantMap& properties)
{
    QQmlComponent maker(m_view->engine(), QUrl(u"qrc:/qt/qml/Netvane/"_s + component + u".qml"_s));
    QObject* made = maker.createWithInitialProperties(properties);
    made->setParent(m_view->contentItem());
    return made;
}

void QuickWindow::addShortcut(QAction& action)
{
    QObject* shortcut = make(u"MenuShortcut"_s, {{u"sequence"_s, action.shortcut().toString()}});
    connect(shortcut, SIGNAL(activated()), &action, SLOT(trigger()));
}

void QuickWindow::addBackground(int cornerRadius)
{
    m_view->setColor(Qt::transparent);
    make(u"PopoverFrame"_s,
        {{u"parent"_s, QVariant::fromValue(m_view->contentItem())}, {u"radius"_s, cornerRadius}});
}

void QuickWindow::setNote(const QString& text)
{
    if (auto* root = m_view->rootObject())
        root->setProperty("note", text);
}

std::optional<int> QuickWindow::preferredHeight() const
{
    const auto* root = m_view->rootObject();
    const double height = root ? std::ceil(root->implicitHeight()) : 0;
    return height > 0 ? std::optional(int(std::min(height, kLargest))) : std::nullopt;
}

QQuickItem& rootOf(QWindow& window)
{
    return *qobject_cast<QQuickView*>(&window)->rootObject();
}

} // namespace netvane::windows
