#pragma once

#include <QByteArray>
#include <QString>

namespace netvane::ui {

/// A page of Markdown (`timeline::providerPage`) as a PDF of A4 pages; pictures and HTML in it are
/// not taken. Takes some tens of milliseconds. Any thread, while there is an application.
QByteArray pdfOf(const QString& markdown);

} // namespace netvane::ui
