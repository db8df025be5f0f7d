#include "app/views_library.h"

#include "base/log.h"

#include <QCoreApplication>
#include <QFile>
#include <QMessageBox>

#include <dlfcn.h>
#include <fcntl.h>

using namespace Qt::Literals::StringLiterals;

namespace netvane::app {
namespace {

Q_LOGGING_CATEGORY(logCategory, "netvane.app")

} // namespace

ViewsLibrary::ViewsLibrary(const QString& path)
    : m_path(path)
    , m_file(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC))
{
}

QString ViewsLibrary::defaultPath()
{
    const QString folder = QCoreApplication::applicationDirPath();
    const QString installed = folder + u"/" NETVANE_VIEWS_FROM_PROGRAM ""_s;
    return QFile::exists(installed) ? installed : folder + u"/netvane-views.so"_s;
}

void ViewsLibrary::sayThatThereIsNone(const QString& reason)
{
    base::log(logCategory(), u"Netvane: The windows cannot be loaded: "_s + reason);
    if (!m_message) {
        m_message = new QMessageBox(QMessageBox::Warning, u"Netvane"_s,
            u"Netvane cannot show its windows. Installing it again may help."_s,
            QMessageBox::Close);
        m_message->setAttribute(Qt::WA_DeleteOnClose);
        m_message->setTextFormat(Qt::PlainText);
        m_message->setInformativeText(u"This file could not be loaded: "_s + m_path);
    }
    m_message->show();
    m_message->raise();
}

std::unique_ptr<DashboardViews> ViewsLibrary::makeViews(
    const services::Services& services, const QMenu& menu, NotificationCenter& notifications)
{
    // By way of the descriptor: whatever the name stands for by now, this is what was opened.
    const QByteArray opened = "/proc/self/fd/" + QByteArray::number(m_file.get());
    void* library = m_file.isOpen() ? ::dlopen(opened.constData(), RTLD_NOW | RTLD_LOCAL) : nullptr;
    void* make = library ? ::dlsym(library, kMakeViews) : nullptr;
    if (make)
        return std::unique_ptr<DashboardViews>(
            reinterpret_cast<MakeLoadedViews*>(make)(services, menu, notifications));
    sayThatThereIsNone(
        m_file.isOpen() ? QString::fromLocal8Bit(::dlerror()) : u"There is no "_s + m_path);
    return nullptr;
}

} // namespace netvane::app
