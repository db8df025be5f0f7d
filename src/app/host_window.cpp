#include "app/host_window.h"

#include <QAction>
#include <QKeyEvent>
#include <QQmlComponent>
#include <QQuickItem>

#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace netvane::app {
namespace {

constexpr double kLargest = 32767; // what window systems count with

} // namespace

HostWindow::HostWindow(ui::ViewEngine& engine, HostedView view)
    : QQuickView(&engine, nullptr)
    , m_state(std::move(view.state))
{
    setResizeMode(QQuickView::SizeRootObjectToView);
    setInitialProperties(view.properties);
    setSource(view.source);
    if (rootObject())
        connect(rootObject(), &QQuickItem::implicitHeightChanged, this,
            &HostWindow::preferredHeightChanged);
}

HostWindow::~HostWindow()
{
    releaseView();
}

void HostWindow::releaseView()
{
    setSource({});
    m_state.reset();
}

void HostWindow::addShortcut(QAction& action)
{
    QQmlComponent component(engine(), QUrl(u"qrc:/qt/qml/Netvane/MenuShortcut.qml"_s));
    QObject* shortcut
        = component.createWithInitialProperties({{u"sequence"_s, action.shortcut().toString()}});
    shortcut->setParent(contentItem());
    connect(shortcut, SIGNAL(activated()), &action, SLOT(trigger()));
}

std::optional<int> HostWindow::preferredHeight() const
{
    const double height = rootObject() ? std::ceil(rootObject()->implicitHeight()) : 0;
    return height > 0 ? std::optional(int(std::min(height, kLargest))) : std::nullopt;
}

void HostWindow::keyPressEvent(QKeyEvent* event)
{
    QQuickView::keyPressEvent(event);
    if (event->isAccepted() || event->key() != Qt::Key_Escape)
        return;
    event->accept();
    Q_EMIT cancelled();
}

} // namespace netvane::app
