#pragma once

#include "Platform/Desktop/Screens/Wlroots/CompositorControl.h"

#include <QObject>

namespace farview
{

/// Hyprland's outputs, through the socket that its own tool uses: a connection for each request,
/// "ok" for an answer.
class HyprlandControl final : public QObject, public CompositorControl
{
public:
    explicit HyprlandControl(std::string path) : mPath(std::move(path)) {}

    void create(Answer then) override;
    void configure(const OutputWish& wish, Answer then) override;
    void remove(const std::string& name, Answer then) override;

private:
    void run(const std::string& request, Answer then);

    std::string mPath;
    int mCreated = 0;
};

} // namespace farview
