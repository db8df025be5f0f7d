#include "ui/view_engine.h"

#include "ui/painting/theme.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QQmlNetworkAccessManagerFactory>
#include <QQuickWindow>

using namespace Qt::Literals::StringLiterals;

/// Registers the types and brings in the resources of the QML module: in a static library nothing
/// else refers to them.
// NOLINTNEXTLINE(readability-identifier-naming)
extern void qml_register_types_Netvane();

static void bringInResources()
{
    Q_INIT_RESOURCE(netvane_symbols);
}

namespace netvane::ui {
namespace {

class RefusingNetworkAccess final : public QNetworkAccessManager {
public:
    using QNetworkAccessManager::QNetworkAccessManager;

protected:
    QNetworkReply* createRequest(
        Operation operation, const QNetworkRequest& request, QIODevice*) override
    {
        QNetworkRequest refused(request);
        // No protocol has this name, so the reply fails without any traffic.
        refused.setUrl(QUrl(u"refused:/"_s));
        return QNetworkAccessManager::createRequest(operation, refused, nullptr);
    }
};

class RefusingNetworkAccessFactory final : public QQmlNetworkAccessManagerFactory {
public:
    QNetworkAccessManager* create(QObject* parent) override
    {
        return new RefusingNetworkAccess(parent);
    }
};

} // namespace

void ViewEngine::prepareRendering()
{
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
}

ViewEngine::ViewEngine(Theme& theme)
    : m_theme(theme)
{
    qml_register_types_Netvane();
    bringInResources();
    addImportPath(u"qrc:/qt/qml"_s);
    static RefusingNetworkAccessFactory factory;
    setNetworkAccessManagerFactory(&factory);
}

} // namespace netvane::ui
