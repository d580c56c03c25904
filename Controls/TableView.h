#pragma once

#include "Controls/Control.h"

#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace farview
{

class TableView;

/// What one cell shows: nothing, a check box, or a text.
using CellValue = std::variant<std::monostate, bool, std::string>;

/// Gives a table its rows. Column identifiers are those of the interface file.
class TableDataSource
{
public:
    virtual ~TableDataSource() = default;
    virtual int numberOfRowsInTableView(TableView& table) = 0;
    virtual CellValue objectValueForTableColumn(TableView& table, std::string_view column,
                                                int row) = 0;
    /// The user edited a cell.
    virtual void setObjectValue(TableView& table, const CellValue& value, std::string_view column,
                                int row) = 0;
};

/// A table without a memory of its own: it asks its data source for what it shows.
class TableView : public Control
{
public:
    TableView() : mEnclosingScrollView(std::make_shared<View>()) {}

    /// The frame around the table, hidden and shown with it.
    View& enclosingScrollView() { return *mEnclosingScrollView; }

    std::weak_ptr<TableDataSource> dataSource() const { return mDataSource; }
    void setDataSource(std::weak_ptr<TableDataSource> source)
    {
        mDataSource = std::move(source);
        reloadData();
    }
    /// Says that the rows are no longer what they were.
    void reloadData() { changed(Change::rows); }

    const std::vector<std::string>& draggedTypes() const { return mDraggedTypes; }
    void registerForDraggedTypes(std::vector<std::string> types)
    {
        mDraggedTypes = std::move(types);
    }

private:
    std::shared_ptr<View> mEnclosingScrollView;
    std::weak_ptr<TableDataSource> mDataSource;
    std::vector<std::string> mDraggedTypes;
};

} // namespace farview
