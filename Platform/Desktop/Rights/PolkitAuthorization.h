#pragma once

#include "Platform/Authorization.h"

#include <QObject>

namespace farview
{

/// Where polkit is on this system. The addresses are fixed: whoever sets the environment does not
/// choose who decides about rights.
struct PolkitPlaces {
    QString busAddress = QStringLiteral("unix:path=/run/dbus/system_bus_socket");
    QString pkexec = QStringLiteral("/usr/bin/pkexec");
};

/// Rights by polkit. The tool's file name is the name of the action that its policy file describes;
/// the policy must name the tool by its path without links. Main thread only.
class PolkitAuthorization final : public QObject, public Authorization
{
    Q_OBJECT

public:
    explicit PolkitAuthorization(PolkitPlaces places);
    /// Questions that are still open are taken back; a tool that runs goes on.
    ~PolkitAuthorization() override;

    Obstacle obstacleOf(const URL& tool) override;
    void foresee(const URL& tool, std::weak_ptr<void> target, Answer then) override;
    void create(const std::string& right, const URL& tool, std::weak_ptr<void> target,
                Answer then) override;
    void executeWithPrivileges(const URL& tool, std::weak_ptr<void> target, Answer then) override;

private:
    PolkitPlaces mPlaces;
};

} // namespace farview
