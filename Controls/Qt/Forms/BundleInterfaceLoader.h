#pragma once

#include "Controls/InterfaceOwner.h"

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
    explicit BundleInterfaceLoader(std::shared_ptr<const Bundle> bundle);
    ~BundleInterfaceLoader() override;

    bool loadNibNamed(const std::string& name, const std::shared_ptr<InterfaceOwner>& owner,
                      std::string& error) override;

private:
    std::shared_ptr<const Bundle> mBundle;
    std::vector<QPointer<QWidget>> mWindows;
};

} // namespace farview
