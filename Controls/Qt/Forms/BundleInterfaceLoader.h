#pragma once

#include "Controls/InterfaceOwner.h"
#include "Controls/Qt/Forms/InterfaceFile.h"

#include <QPointer>
#include <QWidget>

#include <memory>
#include <vector>

namespace farview
{

class Bundle;

/// Loads windows from the interface files in a bundle's resources. A window may be handed to
/// another as its parent, or go when it is closed; what is left at the end goes with the loader.
class BundleInterfaceLoader final : public InterfaceLoader
{
public:
    explicit BundleInterfaceLoader(std::shared_ptr<const Bundle> bundle)
        : mBundle(std::move(bundle))
    {
    }

    ~BundleInterfaceLoader() override
    {
        for (const auto& window : mWindows)
            delete window.data();
    }

    bool loadNibNamed(const std::string& name, const std::shared_ptr<InterfaceOwner>& owner,
                      std::string& error) override
    {
        auto window = InterfaceFile(*mBundle, name).load(owner, error);
        if (!window)
            return false;
        // Windows that are closed for good go by themselves.
        std::erase_if(mWindows, [](const auto& each) { return each.isNull(); });
        mWindows.emplace_back(window.release());
        return true;
    }

private:
    std::shared_ptr<const Bundle> mBundle;
    std::vector<QPointer<QWidget>> mWindows;
};

} // namespace farview
