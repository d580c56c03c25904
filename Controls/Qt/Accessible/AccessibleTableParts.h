#pragma once

#include <QAccessibleInterface>
#include <QPersistentModelIndex>
#include <QPointer>
#include <QTableView>

namespace farview
{

class TableModel;

/// What the parts of a table have in common: they live in it, and have nothing in them.
class AccessibleTablePart : public QAccessibleInterface
{
public:
    explicit AccessibleTablePart(QTableView* table) : mTable(table) {}

    bool isValid() const override { return mTable != nullptr; }
    QObject* object() const override { return nullptr; }
    QWindow* window() const override;
    QAccessibleInterface* parent() const override;
    int childCount() const override { return 0; }
    QAccessibleInterface* child(int /*index*/) const override { return nullptr; }
    QAccessibleInterface* childAt(int /*x*/, int /*y*/) const override { return nullptr; }
    int indexOfChild(const QAccessibleInterface* /*child*/) const override { return -1; }
    void setText(QAccessible::Text /*kind*/, const QString& /*text*/) override {}

protected:
    QTableView& view() const { return *mTable; }
    /// A place in that part of the table, on the screen.
    static QRect onScreen(const QWidget& part, const QRect& place);

private:
    QPointer<QTableView> mTable;
};

/// The header of a column, or of a row (never on the screen), or the corner between them.
class AccessibleTableHeader final : public AccessibleTablePart
{
public:
    enum class Kind { column, row, corner };

    AccessibleTableHeader(QTableView* table, Kind kind, int section)
        : AccessibleTablePart(table), mKind(kind), mSection(section)
    {
    }

    QString text(QAccessible::Text kind) const override;
    QRect rect() const override;
    QAccessible::Role role() const override;
    QAccessible::State state() const override;

private:
    Kind mKind;
    int mSection;
};

/// A cell, with what can be done to it and to its row.
class AccessibleTableCell final : public AccessibleTablePart,
                                  public QAccessibleTableCellInterface,
                                  public QAccessibleActionInterface
{
public:
    AccessibleTableCell(QTableView* table, const QModelIndex& index)
        : AccessibleTablePart(table), mIndex(index)
    {
    }

    bool isValid() const override { return AccessibleTablePart::isValid() && mIndex.isValid(); }
    void* interface_cast(QAccessible::InterfaceType type) override;
    QString text(QAccessible::Text kind) const override;
    QRect rect() const override;
    QAccessible::Role role() const override { return QAccessible::Cell; }
    QAccessible::State state() const override;

    bool isSelected() const override { return false; }
    QList<QAccessibleInterface*> columnHeaderCells() const override;
    QList<QAccessibleInterface*> rowHeaderCells() const override { return {}; }
    int columnIndex() const override { return mIndex.column(); }
    int rowIndex() const override { return mIndex.row(); }
    int columnExtent() const override { return 1; }
    int rowExtent() const override { return 1; }
    QAccessibleInterface* table() const override { return parent(); }

    QStringList actionNames() const override;
    void doAction(const QString& name) override;
    QStringList keyBindingsForAction(const QString& name) const override;

private:
    bool isBox() const;
    /// What the form calls the action, named by a property of the table.
    QString nameOf(const char* action) const { return view().property(action).toString(); }
    TableModel* model() const;
    void changeRows(const QString& name);

    QPersistentModelIndex mIndex;
};

} // namespace farview
