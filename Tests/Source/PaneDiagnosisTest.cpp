#include "Controls/Alert.h"
#include "Tests/Controls/FakeAlerts.h"
#include "Tests/Source/PaneFixture.h"

namespace
{

class PaneDiagnosis : public PaneFixture
{
protected:
    void loadAndShow()
    {
        load();
        pane->setAlertPresenter(alerts);
        pane->willSelect();
    }
    std::size_t launches() const { return fake.workspace.launches().size(); }

    std::shared_ptr<FakeAlerts> alerts = std::make_shared<FakeAlerts>();
};

TEST_F(PaneDiagnosis, StartsTheProgramOfTheBundle)
{
    bundle->addResource("FarviewDoctor", "app");
    loadAndShow();
    const auto before = launches();
    EXPECT_TRUE(pane->perform({"diagnosePressed:"}, nullptr));
    ASSERT_EQ(launches(), before + 1);
    EXPECT_EQ(fake.workspace.launches().back().path,
              "/opt/Farview Preferences.prefPane/Contents/Resources/FarviewDoctor.app");
    EXPECT_FALSE(alerts->isUp());
}

TEST_F(PaneDiagnosis, SaysThatItCannotBeStarted)
{
    loadAndShow();
    pane->diagnosePressed(nullptr);
    ASSERT_TRUE(alerts->isUp());
    EXPECT_EQ(alerts->shown.back().messageText, "The diagnosis cannot be started.");
    EXPECT_EQ(alerts->shown.back().buttons.size(), 1u);
    pane->willUnselect();
    EXPECT_FALSE(alerts->isUp()) << "the message goes with the pane";
}

TEST_F(PaneDiagnosis, FailsQuietlyWhereNothingShowsMessages)
{
    load();
    pane->diagnosePressed(nullptr);
    EXPECT_FALSE(alerts->isUp());
}

} // namespace
