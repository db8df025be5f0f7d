#pragma once

#include <QObject>
#include <QtQmlIntegration>

namespace netvane::services {
struct Services;
} // namespace netvane::services

namespace netvane::ui {

/// The introduction for newcomers, three pages that one can go through in both directions; leaving
/// the last one ends it. Main thread.
class OnboardingState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the popover")
    /// A `Step`.
    Q_PROPERTY(int currentStep READ currentStep NOTIFY currentStepChanged)
    Q_PROPERTY(bool canGoBack READ canGoBack NOTIFY currentStepChanged)
    Q_PROPERTY(bool canSkip READ canSkip NOTIFY currentStepChanged)
    Q_PROPERTY(QString mainLabel READ mainLabel NOTIFY currentStepChanged)
    Q_PROPERTY(bool isAuthorized READ isAuthorized NOTIFY isAuthorizedChanged)

public:
    enum Step { Welcome, Permission, Ready };
    Q_ENUM(Step)

    /// All services exist and outlive this.
    explicit OnboardingState(const services::Services& services);

    int currentStep() const { return m_currentStep; }
    bool canGoBack() const { return m_currentStep > Welcome; }
    bool canSkip() const { return m_currentStep == Permission; }
    QString mainLabel() const;
    bool isAuthorized() const;

    Q_INVOKABLE void goBack();
    /// Leaves the permission undecided.
    Q_INVOKABLE void skip();
    /// What the main button does: the next page, or the end of the introduction.
    Q_INVOKABLE void goOn();
    Q_INVOKABLE void openSystemSettings();

Q_SIGNALS:
    void currentStepChanged();
    void isAuthorizedChanged();

private:
    void setCurrentStep(int step);
    void followPermission();
    void followCompletion();

    const services::Services& m_services;
    int m_currentStep = Welcome;
};

} // namespace netvane::ui
