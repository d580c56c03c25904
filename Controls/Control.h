#pragma once

#include "Controls/View.h"
#include "Platform/Types/Selector.h"

#include <memory>
#include <string>

namespace farview
{

/// A view that the user can operate: it tells its target, by name, what was done.
class Control : public View
{
public:
    bool isEnabled() const { return mEnabled; }
    void setEnabled(bool enabled) { update(mEnabled, enabled); }

    std::weak_ptr<Responder> target() const { return mTarget; }
    void setTarget(std::weak_ptr<Responder> target) { mTarget = std::move(target); }
    Selector action() const { return mAction; }
    void setAction(Selector action) { mAction = action; }

    /// Calls the target's action with this control as sender. Target and control stay alive during
    /// the call. False when there is no target or it does not answer.
    bool sendAction();

private:
    std::weak_ptr<Responder> mTarget;
    Selector mAction;
    bool mEnabled = true;
};

/// A button, or a check box: its state is 0 (off) or 1 (on).
class Button : public Control
{
public:
    enum class Kind { push, checkBox };

    Kind kind() const { return mKind; }
    void setKind(Kind kind) { update(mKind, kind); }
    int state() const { return mState; }
    void setState(int state) { update(mState, state); }
    const std::string& title() const { return mTitle; }
    void setTitle(std::string title) { update(mTitle, std::move(title)); }

    /// What a click does, whoever clicks: a check box flips, then the action is sent, with the
    /// button as its sender. A disabled button ignores it.
    void performClick(Object* sender);

private:
    Kind mKind = Kind::push;
    int mState = 0;
    std::string mTitle;
};

/// A line or a paragraph of plain text, or a field to type a line into.
class TextField : public Control
{
public:
    /// What the text is, not how it looks: whoever shows it picks a colour for it.
    enum class Role { normal, error };

    const std::string& stringValue() const { return mStringValue; }
    void setStringValue(std::string text) { update(mStringValue, std::move(text)); }
    Role textRole() const { return mTextRole; }
    void setTextRole(Role role) { update(mTextRole, role); }
    /// Whether the user may type here.
    bool isEditable() const { return mEditable; }
    void setEditable(bool editable) { update(mEditable, editable); }
    /// Selects the whole text and puts the keyboard there.
    void selectText() { changed(Change::textSelection); }

    /// The user's door: the whole text after a keystroke, a paste or a deletion. Told as
    /// `Change::typedText`. A field that is disabled or not editable ignores it.
    void userTyped(std::string text);

private:
    std::string mStringValue;
    Role mTextRole = Role::normal;
    bool mEditable = false;
};

/// A picture; which one is the interface file's business.
class ImageView : public View
{
};

/// A spinner for work of unknown length.
class ProgressIndicator : public View
{
public:
    bool isAnimating() const { return mAnimating; }
    void startAnimation() { update(mAnimating, true); }
    void stopAnimation() { update(mAnimating, false); }
    bool usesThreadedAnimation() const { return mUsesThreadedAnimation; }
    void setUsesThreadedAnimation(bool uses) { update(mUsesThreadedAnimation, uses); }

private:
    bool mAnimating = false;
    bool mUsesThreadedAnimation = false;
};

} // namespace farview
