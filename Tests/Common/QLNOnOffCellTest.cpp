#include "Tests/Common/SwitchFixture.h"

#include <gmock/gmock.h>

#include <cmath>

using testing::ElementsAre;
using testing::IsEmpty;

namespace farview::test
{
namespace
{

constexpr auto copy = CompositingOperation::copy;
constexpr auto sourceOver = CompositingOperation::sourceOver;
constexpr auto plusLighter = CompositingOperation::plusLighter;

class QLNOnOffCellTest : public SwitchFixture
{
protected:
    double knobX() const { return cell->knobRectFlipped(false).origin.x; }
    auto draw(Point origin = {})
    {
        RecordingCanvas canvas;
        cell->drawWithFrame({origin, {100, 30}}, *slider, canvas);
        return canvas.drawings;
    }
};

// --- geometry ---

TEST_F(QLNOnOffCellTest, TheKnobReachesOverBothEndsOfTheTrack)
{
    EXPECT_EQ(cell->knobRectFlipped(false), (Rect{{-2, -2}, {44, 34}}));
    put(1.0);
    EXPECT_EQ(cell->knobRectFlipped(false), (Rect{{58, -2}, {44, 34}}));
}

TEST_F(QLNOnOffCellTest, TheKnobStandsAtWholePoints)
{
    const std::map<double, double> places = {
        {0.5, 28}, {0.51, 28}, {0.516, 28}, {0.517, 29}, {0.9999, 57}};
    for (const auto& [value, x] : places) {
        put(value);
        EXPECT_EQ(knobX(), x) << value;
    }
}

TEST_F(QLNOnOffCellTest, APictureOfHalvesIsRoundedOutward)
{
    images->files[pathOf("SliderKnob")] = {43.5, 33.25};
    EXPECT_EQ(cell->knobRectFlipped(false), (Rect{{-2, -2}, {44, 34}}));
}

TEST_F(QLNOnOffCellTest, WhetherTheViewIsFlippedMakesNoDifference)
{
    put(0.3);
    EXPECT_FALSE(slider->isFlipped());
    EXPECT_EQ(cell->knobRectFlipped(true), cell->knobRectFlipped(false));
}

TEST_F(QLNOnOffCellTest, WithoutARangeTheKnobStaysAtTheBeginning)
{
    put(1.0);
    slider->setMinValue(1.0);
    EXPECT_EQ(knobX(), -2);
    slider->setMinValue(2.0);
    EXPECT_EQ(knobX(), -2);
}

TEST_F(QLNOnOffCellTest, InAnotherRangeTheKnobStandsInProportion)
{
    slider->setMinValue(10.0);
    slider->setMaxValue(20.0);
    put(15.0);
    EXPECT_EQ(knobX(), 28);
}

TEST_F(QLNOnOffCellTest, AValueThatIsNoNumberIsDrawnAtTheBeginning)
{
    put(std::nan(""));
    EXPECT_EQ(cell->knobRectFlipped(false), (Rect{{-2, -2}, {44, 34}}));
    put(0.0);
    slider->setMaxValue(std::nan(""));
    EXPECT_EQ(knobX(), -2);
}

TEST_F(QLNOnOffCellTest, ACellOfItsOwnHasNoKnob)
{
    EXPECT_EQ(QLNOnOffCell().knobRectFlipped(false), Rect{});
}

// --- drawing ---

TEST_F(QLNOnOffCellTest, DrawsTheWellThenTheKnobThenTheOverlay)
{
    EXPECT_THAT(draw(),
                ElementsAre(RecordingCanvas::Drawing{"SliderWell", {0, 1}, copy, 1.0},
                            RecordingCanvas::Drawing{"SliderKnob", {-2, -2}, sourceOver, 1.0},
                            RecordingCanvas::Drawing{"OverlayMask", {0, 0}, sourceOver, 1.0}));
}

TEST_F(QLNOnOffCellTest, DrawsWhereItIsAskedTo)
{
    const auto drawings = draw({5, 7});
    EXPECT_EQ(drawings[0].point, (Point{5, 8}));
    EXPECT_EQ(drawings[2].point, (Point{5, 7}));
}

TEST_F(QLNOnOffCellTest, DisabledTheKnobIsDrawnAtHalfOpacityAndTheWellIsLightened)
{
    view->setEnabled(false);
    EXPECT_THAT(
        draw(),
        ElementsAre(RecordingCanvas::Drawing{"SliderWell", {0, 1}, plusLighter, 1.0},
                    RecordingCanvas::Drawing{"SliderWell", {0, 1}, sourceOver, 0.30000001192092896},
                    RecordingCanvas::Drawing{"SliderKnob", {-2, -2}, sourceOver, 0.5},
                    RecordingCanvas::Drawing{"OverlayMask", {0, 0}, sourceOver, 1.0}));
}

TEST_F(QLNOnOffCellTest, WithTheFocusTheKnobIsDrawnOverTheOverlay)
{
    cell->setShowsFirstResponder(true);
    const auto drawings = draw();
    EXPECT_EQ(drawings[1].image, "OverlayMask");
    EXPECT_EQ(drawings[2].image, "SliderKnob");
}

TEST_F(QLNOnOffCellTest, WithoutAFocusRingTheFocusMakesNoDifference)
{
    const auto before = draw();
    cell->setShowsFirstResponder(true);
    cell->setFocusRingType(QLNOnOffCell::FocusRingType::none);
    EXPECT_EQ(draw(), before);
}

TEST_F(QLNOnOffCellTest, AHeldKnobIsAnotherPicture)
{
    ASSERT_TRUE(slider->mouseDown({10, 10}));
    EXPECT_TRUE(cell->isPressed());
    EXPECT_EQ(draw()[1].image, "SliderKnobDown");
    slider->mouseUp({10, 10});
    EXPECT_EQ(draw()[1].image, "SliderKnob");
}

TEST_F(QLNOnOffCellTest, APressBesideTheKnobHoldsNothing)
{
    ASSERT_TRUE(slider->mouseDown({90, 10}));
    EXPECT_FALSE(cell->isPressed());
    EXPECT_EQ(draw()[1].image, "SliderKnob");
}

TEST_F(QLNOnOffCellTest, APictureThatIsMissingIsLeftOut)
{
    images->files.erase(pathOf("SliderWell"));
    EXPECT_EQ(draw().size(), 2u);
    view->setImageSource({});
    EXPECT_THAT(draw(), IsEmpty());
}

// --- clicks ---

TEST_F(QLNOnOffCellTest, AClickOnTheKnobSwitches)
{
    click({10, 10});
    EXPECT_EQ(slider->onOffValue(), 1.0);
    EXPECT_EQ(cell->state(), QLNOnOffCell::pressedOnKnob);
    EXPECT_DOUBLE_EQ(animator->movement->duration.count(), 0.2);
    animator->finish();
    click({90, 10});
    EXPECT_EQ(slider->onOffValue(), 0.0);
    EXPECT_THAT(target->values, ElementsAre(1.0, 0.0));
    EXPECT_THAT(target->senders, ElementsAre(slider.get(), slider.get()));
}

TEST_F(QLNOnOffCellTest, AClickOnTheTrackSwitchesJustAsWell)
{
    click({90, 10});
    EXPECT_EQ(slider->onOffValue(), 1.0);
    EXPECT_EQ(cell->state(), QLNOnOffCell::pressedOnTrack);
    EXPECT_DOUBLE_EQ(animator->movement->duration.count(), 0.2);
    EXPECT_THAT(target->values, ElementsAre(1.0));
}

TEST_F(QLNOnOffCellTest, TheEdgesOfTheKnob)
{
    for (const auto& [point, state] : {std::pair{Point{41.99, 10}, QLNOnOffCell::pressedOnKnob},
                                       {Point{42, 10}, QLNOnOffCell::pressedOnTrack},
                                       {Point{10, 32}, QLNOnOffCell::pressedOnTrack}}) {
        slider->mouseDown(point);
        EXPECT_EQ(cell->state(), state) << point.x << ' ' << point.y;
        slider->cancelTracking();
    }
}

TEST_F(QLNOnOffCellTest, AClickDuringAMovementIsRefused)
{
    click({10, 10});
    animator->advanceTo(0.5);
    EXPECT_FALSE(slider->mouseDown({50, 10}));
    slider->mouseDragged({80, 10});
    slider->mouseUp({80, 10});
    EXPECT_EQ(slider->onOffValue(), 1.0);
    EXPECT_EQ(slider->doubleValue(), 0.5);
    EXPECT_EQ(target->senders.size(), 1u);
    animator->finish();
    EXPECT_TRUE(slider->mouseDown({80, 10}));
}

TEST_F(QLNOnOffCellTest, AClickIsRefusedWhileAValueIsNoNumber)
{
    put(std::nan(""));
    EXPECT_FALSE(slider->mouseDown({10, 10}));
}

TEST_F(QLNOnOffCellTest, FromNeitherEndAClickSwitchesOff)
{
    put(0.5);
    click({90, 10});
    EXPECT_EQ(slider->onOffValue(), 0.0);
}

// --- drags ---

TEST_F(QLNOnOffCellTest, AShortDragFromOffSnapsBack)
{
    drag(9); // 0.15 of 60 points
    EXPECT_EQ(slider->doubleValue(), 0.15);
    EXPECT_EQ(slider->onOffValue(), 0.0);
    EXPECT_DOUBLE_EQ(animator->movement->duration.count(), 0.03);
    animator->finish();
    EXPECT_EQ(slider->doubleValue(), 0.0);
    EXPECT_THAT(target->values, ElementsAre(0.0)) << "the action is sent all the same";
}

TEST_F(QLNOnOffCellTest, ALongerDragFromOffSwitchesOn)
{
    drag(15); // 0.25
    EXPECT_EQ(slider->doubleValue(), 0.25);
    EXPECT_EQ(slider->onOffValue(), 1.0);
    EXPECT_DOUBLE_EQ(animator->movement->duration.count(), 0.15);
    EXPECT_THAT(target->values, ElementsAre(1.0));
}

TEST_F(QLNOnOffCellTest, FromOnItIsTheSame)
{
    put(1.0);
    drag(-9);
    EXPECT_EQ(slider->onOffValue(), 1.0);
    animator->finish();
    drag(-15);
    EXPECT_EQ(slider->onOffValue(), 0.0);
}

TEST_F(QLNOnOffCellTest, TheThresholdIsASinglePrecisionNumber)
{
    struct Case {
        double on;
        double left;
        double expected;
    };
    const double threshold = 0.20000000298023224;
    for (const auto& [on, left, expected] : {
             Case{0.0, 0.2, 0.0},
             Case{0.0, std::nextafter(threshold, 0.0), 0.0},
             Case{0.0, threshold, 1.0},
             Case{1.0, 1.0 - 0.2, 1.0},
             Case{1.0, 1.0 - threshold, 0.0},
         }) {
        put(on);
        slider->setDoubleValue(left);
        cell->setState(QLNOnOffCell::dragged);
        cell->stopTracking({}, {}, *slider, true);
        EXPECT_EQ(slider->onOffValue(), expected) << on << " " << left;
    }
}

TEST_F(QLNOnOffCellTest, ADragThatEndsNowhereSwitchesLikeAClick)
{
    slider->setDoubleValue(std::nan(""));
    cell->setState(QLNOnOffCell::dragged);
    cell->stopTracking({}, {}, *slider, true);
    EXPECT_EQ(slider->onOffValue(), 1.0);
    slider->setDoubleValue(std::nan(""));
    cell->stopTracking({}, {}, *slider, true);
    EXPECT_EQ(slider->onOffValue(), 0.0);
}

TEST_F(QLNOnOffCellTest, InAnUnknownStateAReleaseDoesNothing)
{
    cell->setState(3);
    cell->stopTracking({}, {}, *slider, true);
    EXPECT_EQ(slider->onOffValue(), 0.0);
    EXPECT_EQ(animator->movements, 0);
}

TEST_F(QLNOnOffCellTest, TheKnobFollowsTheHandAndStopsAtTheEnds)
{
    ASSERT_TRUE(slider->mouseDown({20, 15}));
    slider->mouseDragged({50, 40});
    EXPECT_DOUBLE_EQ(slider->doubleValue(), 0.5);
    EXPECT_EQ(cell->state(), QLNOnOffCell::dragged);
    slider->mouseDragged({500, 15});
    EXPECT_EQ(slider->doubleValue(), 1.0);
    slider->mouseDragged({50, 15});
    EXPECT_DOUBLE_EQ(slider->doubleValue(), 0.5) << "what went too far does not add up";
    slider->mouseDragged({-500, 15});
    EXPECT_EQ(slider->doubleValue(), 0.0);
    EXPECT_EQ(slider->onOffValue(), 0.0) << "it is only on its way once it is let go";
    EXPECT_THAT(target->senders, IsEmpty()) << "not while it is dragged";
}

TEST_F(QLNOnOffCellTest, OnTheTrackTheKnobDoesNotFollowTheHand)
{
    ASSERT_TRUE(slider->mouseDown({90, 15}));
    slider->mouseDragged({50, 15});
    slider->mouseDragged({10, 15});
    EXPECT_EQ(slider->doubleValue(), 0.0);
    EXPECT_EQ(cell->state(), QLNOnOffCell::pressedOnTrack);
    slider->mouseUp({10, 15});
    EXPECT_EQ(slider->onOffValue(), 1.0);
}

TEST_F(QLNOnOffCellTest, APressThatDoesNotMoveIsNoDrag)
{
    slider->mouseDown({20, 15});
    slider->mouseDragged({20, 15});
    EXPECT_EQ(cell->state(), QLNOnOffCell::pressedOnKnob);
}

TEST_F(QLNOnOffCellTest, AMoveFromTheZeroPointIsNoDragThoughTheKnobFollows)
{
    ASSERT_TRUE(slider->mouseDown({0, 0}));
    slider->mouseDragged({9, 0});
    EXPECT_EQ(cell->state(), QLNOnOffCell::pressedOnKnob);
    EXPECT_EQ(slider->doubleValue(), 0.15);
    slider->mouseUp({9, 0});
    EXPECT_EQ(slider->onOffValue(), 1.0) << "so it switches like a click";
}

TEST_F(QLNOnOffCellTest, WhatComesBetweenPressAndReleaseEndsTheDragWithoutAnAction)
{
    slider->mouseDown({20, 15});
    slider->mouseDragged({70, 15});
    slider->cancelTracking();
    EXPECT_FALSE(cell->isPressed());
    animator->finish();
    EXPECT_EQ(slider->doubleValue(), 0.0);
    slider->mouseUp({70, 15});
    EXPECT_EQ(slider->onOffValue(), 0.0);
    EXPECT_THAT(target->senders, IsEmpty());
}

TEST_F(QLNOnOffCellTest, WhenTheStateChangesUnderTheHandTheReleaseIsJudgedByTheNewOne)
{
    slider->mouseDown({20, 15});
    slider->mouseDragged({23, 15});
    view->setState(1);
    slider->mouseDragged({26, 15});
    EXPECT_DOUBLE_EQ(slider->doubleValue(), 0.1) << "the hand holds the knob";
    slider->mouseUp({26, 15});
    EXPECT_EQ(slider->onOffValue(), 0.0);
}

TEST_F(QLNOnOffCellTest, AKnobWithoutRoomToMoveIsClickedOnly)
{
    images->files[pathOf("SliderKnob")] = {104, 34};
    drag(30);
    EXPECT_EQ(slider->doubleValue(), 0.0);
    EXPECT_EQ(slider->onOffValue(), 0.0);
}

} // namespace
} // namespace farview::test
