#include "Controls/Qt/Forms/BundleInterfaceLoader.h"

#include "Controls/Qt/Forms/InterfaceFile.h"

namespace farview
{

BundleInterfaceLoader::BundleInterfaceLoader(std::shared_ptr<const Bundle> bundle)
    : mBundle(std::move(bundle))
{
}

BundleInterfaceLoader::~BundleInterfaceLoader()
{
    for (const auto& window : mWindows)
        delete window.data();
}

bool BundleInterfaceLoader::loadNibNamed(const std::string& name,
                                         const std::shared_ptr<InterfaceOwner>& owner,
                                         std::string& error)
{
    auto window = InterfaceFile(*mBundle, name).load(owner, error);
    if (!window)
        return false;
    // Windows that are closed for good go by themselves.
    std::erase_if(mWindows, [](const auto& each) { return each.isNull(); });
    mWindows.emplace_back(window.release());
    return true;
}

} // namespace farview
