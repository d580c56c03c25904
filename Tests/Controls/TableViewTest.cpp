#include "Controls/TableView.h"

#include "Tests/Controls/Recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using farview::CellValue;
using farview::Change;
using farview::TableView;
using testing::ElementsAre;

namespace
{

class Rows : public farview::TableDataSource
{
public:
    int numberOfRowsInTableView(TableView&) override { return 3; }
    CellValue objectValueForTableColumn(TableView&, std::string_view, int) override { return {}; }
    void setObjectValue(TableView&, const CellValue&, std::string_view, int) override {}
};

TEST(TableView, TellsThatItsRowsAreNoLongerWhatTheyWere)
{
    const auto table = std::make_shared<TableView>();
    const auto rows = std::make_shared<Rows>();
    const ChangeCounter told(*table);
    table->setDataSource(rows);
    table->reloadData();
    EXPECT_THAT(told.changes, ElementsAre(Change::rows, Change::rows));
    EXPECT_EQ(table->dataSource().lock(), rows);
}

TEST(TableView, DoesNotKeepItsDataSourceAlive)
{
    const auto table = std::make_shared<TableView>();
    auto rows = std::make_shared<Rows>();
    table->setDataSource(rows);
    rows.reset();
    EXPECT_EQ(table->dataSource().lock(), nullptr);
}

TEST(TableView, ItsScrollViewIsHiddenApartFromIt)
{
    const auto table = std::make_shared<TableView>();
    table->enclosingScrollView().setHidden(true);
    EXPECT_TRUE(table->enclosingScrollView().isHidden());
    EXPECT_FALSE(table->isHidden());
}

TEST(TableView, RemembersWhatMayBeDroppedOnIt)
{
    TableView table;
    table.registerForDraggedTypes({"row"});
    EXPECT_THAT(table.draggedTypes(), ElementsAre("row"));
}

} // namespace
