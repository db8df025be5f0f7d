#pragma once

#include "app/app_delegate.h"
#include "app/dashboard_views.h"
#include "app/notification_center.h"
#include "platform/application_activity.h"
#include "platform/platform.h"

#include <QApplication>

#include <functional>
#include <memory>

namespace netvane::app {

/// Whether there is anything to show windows on. Qt ends a program without a display by an abort; a
/// sentence is kinder.
bool hasDisplay();

/// For `qInstallMessageHandler`: what Qt itself has to say takes the way of all our lines, escaped
/// and never waiting.
void logOfQt(QtMsgType type, const QMessageLogContext& context, const QString& message);

/// Everything but the application object: the delegate on its platform, with its life along that of
/// the event loop. Main thread.
class Program {
public:
    /// `platform` lacks what the desktop's own windows do, which is added here, but for an opener
    /// of addresses if it brings one. `application` outlives the program. `makeViews` as for
    /// `AppDelegate`.
    Program(QApplication& application, platform::Platform platform, MakeViews makeViews);

    AppDelegate& delegate() { return m_delegate; }
    /// Claims to be the one running copy; the rest follows from the answer. `action` as in
    /// `platform::StartRequest`.
    void start(const QString& action = {});

private:
    void follow(QApplication& application);

    platform::Platform m_platform;
    platform::ApplicationActivity m_activity;
    NotificationCenter m_notifications;
    AppDelegate m_delegate;
    QString m_action; ///< of this start
};

/// Makes the program and runs it until it is asked to end, by whatever means; returns its status.
/// Once for the process.
int runProgram(QApplication& application,
    const std::function<std::unique_ptr<Program>()>& makeProgram, const QString& action = {});

} // namespace netvane::app
