#pragma once

#include "Controls/Qt/Binding.h"
#include "Controls/Qt/ScreenMap/ScreenMapWidget.h"
#include "Controls/Qt/Text/PlainText.h"

#include <memory>
#include <utility>

namespace farview
{

/// The picture of the screens. The widget hands the user's moves to the map itself.
class ScreenMapBinding : public Binding
{
public:
    ScreenMapBinding(std::shared_ptr<ScreenMap> map, ScreenMapWidget* widget)
        : Binding(map, widget), mMap(std::move(map)), mMapWidget(widget)
    {
    }

protected:
    void adopt() override { mMapWidget->setMap(mMap); }

    void show(Change /*change*/) override
    {
        mMapWidget->refresh();
        const QString name = plainLine(mMap->stringValue());
        if (!name.isEmpty())
            mMapWidget->setAccessibleName(name);
    }

private:
    std::shared_ptr<ScreenMap> mMap;
    ScreenMapWidget* mMapWidget;
};

} // namespace farview
