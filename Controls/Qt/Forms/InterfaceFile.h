#pragma once

#include "Controls/InterfaceOwner.h"

#include <QWidget>

#include <map>
#include <memory>
#include <string>

namespace farview
{

class Bundle;

/// A window or a part of one, described by a file in a bundle's resources.
class InterfaceFile
{
public:
    InterfaceFile(const Bundle& bundle, std::string name);

    /// Loads the file, connects the owner's outlets (the object of that name) and the actions (the
    /// dynamic property "action" names the owner's operation). Texts are looked up in the bundle.
    ///
    /// Null when the file is missing or cannot be read, lacks an outlet, has a widget that cannot
    /// show what the outlet is, or names an action that the owner has not; `error` then says which.
    std::unique_ptr<QWidget> load(const std::shared_ptr<InterfaceOwner>& owner, std::string& error);

private:
    std::unique_ptr<QWidget> loadWidget(std::string& error) const;
    bool connectOutlets(QWidget& root, InterfaceOwner& owner, std::string& error);
    bool connectActions(QWidget& root, const std::shared_ptr<InterfaceOwner>& owner,
                        std::string& error) const;
    std::shared_ptr<Control> controlFor(QWidget* widget) const;
    std::string fileName() const { return mName + ".ui"; }

    const Bundle& mBundle;
    std::string mName;
    std::map<QWidget*, std::shared_ptr<View>> mConnected;
};

} // namespace farview
