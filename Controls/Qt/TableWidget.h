#pragma once

#include <QTableView>

namespace farview
{

/// The table of an interface file: a table view that assistive technology can operate cell by
/// cell. The dynamic properties "moveUp" and "moveDown" name what moves a row.
class TableWidget : public QTableView
{
    Q_OBJECT

public:
    using QTableView::QTableView;
};

} // namespace farview
