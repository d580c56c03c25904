#pragma once

#include "Controls/Switch/QLNOnOffView.h"
#include "Platform/Fake/FakeBundle.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace farview::test
{

class FakeImage final : public Image
{
public:
    FakeImage(std::string path, Size size) : path(std::move(path)), mSize(size) {}
    Size size() const override { return mSize; }

    const std::string path;

private:
    Size mSize;
};

/// Knows the sizes of pictures by their paths, and counts the loads.
class FakeImages final : public ImageRegistry
{
public:
    std::shared_ptr<Image> imageNamed(const std::string& name) const override
    {
        const auto found = named.find(name);
        return found == named.end() ? nullptr : found->second;
    }
    std::shared_ptr<Image> imageWithContentsOfFile(const std::string& path) override
    {
        ++loads;
        const auto found = files.find(path);
        return found == files.end() ? nullptr : std::make_shared<FakeImage>(path, found->second);
    }
    void setName(const std::shared_ptr<Image>& image, const std::string& name) override
    {
        named[name] = image;
    }

    std::map<std::string, Size> files;
    std::map<std::string, std::shared_ptr<Image>> named;
    int loads = 0;
};

/// A movement that the test plays by hand.
class HandDrivenAnimator final : public Animator
{
public:
    void play(double from, double to, Duration duration, const Animation& animation,
              std::function<void(double)> show) override
    {
        movement = Movement{from, to, duration, animation};
        mShow = std::move(show);
        ++movements;
    }
    void stop() override { mShow = nullptr; }
    bool isPlaying() const { return mShow != nullptr; }

    /// Shows what a movement of even speed shows after that share of its time.
    void advanceTo(double share)
    {
        ASSERT_TRUE(isPlaying());
        mShow(movement->from + (movement->to - movement->from) * share);
    }
    void finish()
    {
        ASSERT_TRUE(isPlaying());
        const auto show = std::exchange(mShow, nullptr);
        show(movement->to);
    }

    struct Movement {
        double from;
        double to;
        Duration duration;
        Animation animation;
    };
    std::optional<Movement> movement;
    int movements = 0;

private:
    std::function<void(double)> mShow;
};

/// Writes down what is drawn.
class RecordingCanvas final : public Canvas
{
public:
    struct Drawing {
        std::string image;
        Point point;
        CompositingOperation operation;
        double fraction;

        bool operator==(const Drawing&) const = default;
    };

    void compositeToPoint(const Image& image, Point point, CompositingOperation operation,
                          double fraction) override
    {
        const std::string& path = dynamic_cast<const FakeImage&>(image).path;
        const auto name = path.substr(path.rfind('/') + 1);
        drawings.push_back({name.substr(0, name.find('.')), point, operation, fraction});
    }

    std::vector<Drawing> drawings;
};

inline void PrintTo(const RecordingCanvas::Drawing& drawing, std::ostream* stream)
{
    *stream << drawing.image << " at (" << drawing.point.x << ", " << drawing.point.y << ") by "
            << static_cast<int>(drawing.operation) << ", " << drawing.fraction;
}

/// Counts the actions and remembers what the sender told in each.
class SwitchTarget final : public Responder
{
public:
    static constexpr Selector pressed{"onOffSliderPressed:"};

    bool respondsTo(Selector selector) const override { return selector == pressed; }
    bool perform(Selector selector, Object* sender) override
    {
        if (!respondsTo(selector))
            return false;
        senders.push_back(sender);
        const auto* slider = dynamic_cast<QLNOnOff*>(sender);
        values.push_back(slider ? slider->onOffValue() : -1);
        return true;
    }

    std::vector<Object*> senders;
    std::vector<double> values;
};

/// A switch of 100 by 30 points with a knob of 44 by 34, so the knob travels 60 points.
class SwitchFixture : public testing::Test
{
protected:
    SwitchFixture()
    {
        for (const auto& [name, size] : std::map<std::string, Size>{{"OverlayMask", {100, 30}},
                                                                    {"SliderWell", {100, 29}},
                                                                    {"SliderKnob", {44, 34}},
                                                                    {"SliderKnobDown", {44, 34}}}) {
            bundle.addResource(name, "tiff");
            images->files[pathOf(name)] = size;
        }
        view->setImageSource({&bundle, images});
        view->initWithFrame({{7, 9}, {1, 1}});
        slider->setAnimator(animator);
        view->setTarget(target);
        view->setAction(SwitchTarget::pressed);
    }

    std::string pathOf(const std::string& name) const
    {
        return *bundle.pathForResource(name, "tiff");
    }
    void put(double value) { slider->setDoubleValue(value, false); }
    /// Presses on the middle of the knob, moves by that many points, and lets go.
    void drag(double by)
    {
        const Rect knob = cell->knobRectFlipped(false);
        const Point from{knob.origin.x + 22, 15};
        ASSERT_TRUE(slider->mouseDown(from));
        slider->mouseDragged({from.x + by, 15});
        slider->mouseUp({from.x + by, 15});
    }
    void click(Point point)
    {
        if (slider->mouseDown(point))
            slider->mouseUp(point);
    }

    FakeBundle bundle{"/pane"};
    std::shared_ptr<FakeImages> images = std::make_shared<FakeImages>();
    std::shared_ptr<HandDrivenAnimator> animator = std::make_shared<HandDrivenAnimator>();
    std::shared_ptr<SwitchTarget> target = std::make_shared<SwitchTarget>();
    std::shared_ptr<QLNOnOffView> view = std::make_shared<QLNOnOffView>();
    std::shared_ptr<QLNOnOff> slider = view->slider();
    std::shared_ptr<QLNOnOffCell> cell = slider->cell();
};

} // namespace farview::test
