#include "Controls/Qt/ControlBindings.h"
#include "Controls/Qt/Forms/FrameBinding.h"
#include "Controls/Qt/Forms/FrameContainer.h"
#include "Controls/Qt/Forms/SheetBinding.h"
#include "Controls/Qt/Forms/SheetWidget.h"
#include "Controls/Qt/Forms/WindowBinding.h"
#include "Controls/Qt/PopUp/PopUpBinding.h"
#include "Controls/Qt/PopUp/PopUpWidget.h"
#include "Controls/Qt/SpinnerWidget.h"
#include "Controls/Qt/Switch/SwitchBinding.h"
#include "Controls/Qt/Switch/SwitchWidget.h"
#include "Controls/Qt/Table/TableBinding.h"
#include "Controls/Qt/Text/ChiseledTextWidget.h"
#include "Controls/Qt/Text/LineEditBinding.h"

namespace farview
{
namespace
{

/// A view without a look of its own: only its place counts.
class PlainBinding : public Binding
{
public:
    using Binding::Binding;

protected:
    void show(Change /*change*/) override {}
};

enum class Match { otherControl, wrongWidget, bound };

/// Binds when the view is exactly that kind of control.
template <typename BindingClass, typename ViewClass, typename WidgetClass>
Match tryBind(const std::shared_ptr<View>& view, QWidget* widget)
{
    const auto typedView = std::dynamic_pointer_cast<ViewClass>(view);
    if (!typedView)
        return Match::otherControl;
    auto* typedWidget = qobject_cast<WidgetClass*>(widget);
    if (!typedWidget)
        return Match::wrongWidget;
    auto* binding = new BindingClass(typedView, typedWidget);
    binding->start();
    return Match::bound;
}

/// A text field is a label, unless the widget is one to type into.
Match tryLineEdit(const std::shared_ptr<View>& view, QWidget* widget)
{
    return qobject_cast<QLineEdit*>(widget)
               ? tryBind<LineEditBinding, TextField, QLineEdit>(view, widget)
               : Match::otherControl;
}

/// An engraved word, unless the widget is a button of the desktop's own.
Match tryChiseledText(const std::shared_ptr<View>& view, QWidget* widget)
{
    return qobject_cast<ChiseledTextWidget*>(widget)
               ? tryBind<ChiseledTextBinding, FVEChiseledTextButton, ChiseledTextWidget>(view,
                                                                                         widget)
               : Match::otherControl;
}

// What a control derives from comes after it.
using Attempt = Match (*)(const std::shared_ptr<View>&, QWidget*);
constexpr Attempt attempts[] = {
    tryBind<PopUpBinding, PopUpButton, PopUpWidget>,
    tryChiseledText,
    tryBind<ButtonBinding, Button, QAbstractButton>,
    tryLineEdit,
    tryBind<TextFieldBinding, TextField, QLabel>,
    tryBind<TableBinding, TableView, QTableView>,
    tryBind<ImageViewBinding, ImageView, QLabel>,
    tryBind<ProgressIndicatorBinding, ProgressIndicator, SpinnerWidget>,
    tryBind<TabViewBinding, TabView, QTabWidget>,
    tryBind<SwitchBinding, QLNOnOffView, SwitchWidget>,
    tryBind<SheetBinding, Panel, SheetWidget>,
    tryBind<WindowBinding, Window, SheetWidget>,
    tryBind<PlainBinding, View, QWidget>,
};

} // namespace

bool bindToWidget(const std::shared_ptr<View>& view, QWidget* widget)
{
    if (auto* container = qobject_cast<FrameContainer*>(widget->parentWidget()))
        new FrameBinding(view, widget, container);
    for (const Attempt attempt : attempts) {
        const Match match = attempt(view, widget);
        if (match != Match::otherControl)
            return match == Match::bound;
    }
    return false;
}

} // namespace farview
